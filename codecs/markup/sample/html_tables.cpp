// Tables in the HTML standard (section 4.9); "tbody" is dropped by the tokenizer:
//
//     <table>
//       <thead> <tr> <th>name</th> <th>name</th> </tr> </thead>
//       <tbody> <tr> <td>cell</td> <td>cell</td> </tr> </tbody>
//       <tfoot> <tr> <td>cell</td> <td>cell</td> </tr> </tfoot>
//     </table>
#include "codecs/markup/sample/html_tables.h"

#include "codecs/markup/sample/table_header.h"
#include "codecs/markup/tokens/html_elements.h"
#include "codecs/markup/tree/path.h"

#include <map>
#include <memory>
#include <unordered_map>
#include <unordered_set>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

namespace {

// Bounds of what a page can make the list hold: the path of each table and the texts of one row.
constexpr size_t kMaxTables = 10'000;
constexpr size_t kMaxTableDepth = 256;
constexpr qsizetype kCellChars = 100;
constexpr qsizetype kFirstRowCells = 1'000;

class TableLister
{
public:
    TableLister(XMLTokenizer &tokenizer, bool zeroBased, Spans spans)
        : m_tokenizer(tokenizer)
        , m_zeroBased(zeroBased)
        , m_spans(spans)
        , m_open(1)
    {
    }

    std::vector<HtmlTable> list();

private:
    struct Element
    {
        std::u16string name; ///< in lower case
        quint32 number = 1;  ///< among its siblings of that name
        std::map<std::u16string, quint32> children;
    };
    /// A table that has not ended yet.
    struct OpenTable
    {
        size_t depth;     ///< open elements, with the table
        size_t table;     ///< index in m_tables
        qint64 cells = 0; ///< in the current row
        bool isInHeadCell = false;
        std::unique_ptr<TableHeader> header; ///< with Spans::Expanded
    };

    void begin();
    void beginInTable(TableHeader &header);
    void beginTable();
    void beginRow();
    void beginCell();
    void end();
    void endTable();
    void addText();
    void addFirstText(const QString &text);
    QString pathToHere() const;
    QString stepTo(const Element &element) const;

    XMLTokenizer &m_tokenizer;
    bool m_zeroBased;
    Spans m_spans;
    bool m_separatesWords = true; ///< a tag between the last text and the next one
    std::vector<Element> m_open;
    std::vector<OpenTable> m_openTables;
    std::vector<HtmlTable> m_tables;
};

/// The path to the innermost open element. Indexes count siblings of the same name.
QString TableLister::pathToHere() const
{
    QStringList steps;
    for (size_t i = 1; i < m_open.size(); ++i) {
        steps << stepTo(m_open[i]);
    }
    return steps.join(u'/');
}

/// The first element of a name has no index, so that most paths stay short.
QString TableLister::stepTo(const Element &element) const
{
    const QString step = QStringView(escapedStep(element.name)).toString();
    const quint32 index = element.number - (m_zeroBased ? 1 : 0);
    return element.number > 1 ? step + u"[%1]"_s.arg(index) : step;
}

void TableLister::begin()
{
    Element element;
    element.name = toLowerCase(m_tokenizer.name());
    element.number = ++m_open.back().children[element.name];
    m_open.push_back(std::move(element));
    const std::u16string &name = m_open.back().name;
    m_separatesWords = m_separatesWords || !isInlineElement(m_tokenizer.rawText().view());
    if (name == u"table") {
        beginTable();
    } else if (!m_openTables.empty() && m_openTables.back().header) {
        beginInTable(*m_openTables.back().header);
    } else if (name == u"tr") {
        beginRow();
    } else if (name == u"td" || name == u"th") {
        beginCell();
    }
}

void TableLister::beginTable()
{
    if (m_tables.size() < kMaxTables && m_open.size() <= kMaxTableDepth) {
        OpenTable &open = m_openTables.emplace_back(OpenTable{m_open.size(), m_tables.size()});
        m_tables.push_back({pathToHere(), 0, 0, 0, {}});
        if (m_spans == Spans::Expanded) {
            open.header = std::make_unique<TableHeader>();
        }
    }
}

/// A row or a cell of a table whose spans are expanded, or another element in it.
void TableLister::beginInTable(TableHeader &header)
{
    const std::u16string &name = m_open.back().name;
    if (name == u"tr") {
        header.beginRow(m_tokenizer.rowGroup(), m_open[m_open.size() - 2].name == u"thead");
    } else if (name == u"td" || name == u"th") {
        CellSpan span;
        for (size_t i = 0; i < m_tokenizer.attributes().size(); ++i) {
            span.readAttribute(m_tokenizer.attributeName(i), m_tokenizer.attributeValue(i));
        }
        header.addCell(span, name == u"th");
    }
}

/// A row belongs to the innermost table. Rows outside of thead and tfoot are directly in the table,
/// because the tokenizer drops tbody.
void TableLister::beginRow()
{
    if (!m_openTables.empty()) {
        OpenTable &open = m_openTables.back();
        HtmlTable &table = m_tables[open.table];
        const bool isInBody = m_open.size() == open.depth + 1;
        table.isFirstInHead =
            table.isFirstInHead || (table.rows + table.headRows == 0 && !isInBody);
        ++(isInBody ? table.rows : table.headRows);
        open.cells = 0;
    }
}

void TableLister::beginCell()
{
    if (m_openTables.empty()) {
        return;
    }
    OpenTable &open = m_openTables.back();
    HtmlTable &table = m_tables[open.table];
    table.columns = std::max(table.columns, ++open.cells);
    open.isInHeadCell = m_open.back().name == u"th";
    if (table.rows + table.headRows == 1 && table.firstRow.size() < kFirstRowCells) {
        table.firstRow << QString();
        table.hasHeadCell = table.hasHeadCell || open.isInHeadCell;
    }
}

/// A text belongs to the innermost table.
void TableLister::addText()
{
    if (m_openTables.empty()) {
        return;
    }
    // Later rows say no more about the header than the first ones.
    const OpenTable &open = m_openTables.back();
    const HtmlTable &table = m_tables[open.table];
    if (open.header ? !open.header->usesTexts()
                    : open.cells == 0 || table.rows + table.headRows > 2) {
        return;
    }
    const QString text = QString::fromUtf16(m_tokenizer.text().data(), m_tokenizer.length());
    if (open.header) {
        open.header->addText(text, m_separatesWords || m_tokenizer.isAfterSpace());
        m_separatesWords = false;
    } else {
        addFirstText(text);
    }
}

/// Use a text of one of the first two rows as evidence for the names of the columns.
void TableLister::addFirstText(const QString &text)
{
    const OpenTable &open = m_openTables.back();
    HtmlTable &table = m_tables[open.table];
    const bool hasDigits =
        std::any_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
    if (table.rows + table.headRows == 2) {
        table.digitsFollow = table.digitsFollow || hasDigits;
        return;
    }
    table.hasDataCell = table.hasDataCell || !open.isInHeadCell;
    table.hasDigits = table.hasDigits || hasDigits;
    if (open.cells == table.firstRow.size() && table.firstRow.back().size() < kCellChars) {
        QString &cell = table.firstRow.back();
        cell = (cell + u' ' + text.first(std::min(text.size(), 4 * kCellChars))).simplified();
        cell.truncate(kCellChars);
    }
}

void TableLister::end()
{
    m_separatesWords = m_separatesWords || !isInlineElement(m_tokenizer.rawText().view());
    if (!m_openTables.empty() && m_openTables.back().depth == m_open.size()) {
        endTable();
        m_openTables.pop_back();
    }
    m_open.pop_back();
}

void TableLister::endTable()
{
    const OpenTable &open = m_openTables.back();
    if (open.header) {
        HtmlTable &table = m_tables[open.table];
        table.isExpanded = true;
        table.rows = open.header->rows();
        table.columns = open.header->columns();
        table.headRows = open.header->headerRows();
        table.firstRow = open.header->names();
    }
}

std::vector<HtmlTable> TableLister::list()
{
    m_tokenizer.setBalanced(true);
    for (;;) {
        switch (m_tokenizer.nextToken()) {
        case Token::Start:
            begin();
            break;
        case Token::End:
            end();
            break;
        case Token::Text:
            addText();
            break;
        case Token::EndOfData:
        case Token::Error:
            return std::move(m_tables);
        default:
            break;
        }
    }
}

} // namespace

std::vector<HtmlTable> listTables(XMLTokenizer &tokenizer, bool zeroBased, Spans spans)
{
    return TableLister(tokenizer, zeroBased, spans).list();
}

namespace {

/// True when the first row has only th cells. Also when its cells, except possibly the first one,
/// have texts without digits, and either the second row has digits or the first cell is empty, as
/// it is above names of rows.
bool beginsWithNames(const HtmlTable &table)
{
    const QStringList &texts = table.firstRow;
    const bool looksLikeNames = texts.size() > 1 && texts.size() == table.columns &&
                                !table.hasDigits && !texts.mid(1).contains(QString()) &&
                                (table.digitsFollow || texts.first().isEmpty());
    return (table.hasHeadCell && !table.hasDataCell) || looksLikeNames;
}

/// Makes names that differ.
class DistinctNames
{
public:
    /// A name made of the text, of it and a number from 2, or of the number of the column.
    QString add(const QString &text, qint64 column)
    {
        const QString base = text.isEmpty() ? u"column %1"_s.arg(column) : text;
        QString name = base;
        // A cell that spans columns names each of them: the search continues where it ended.
        for (int &n = m_lastNumbers[base]; !m_names.insert(name).second;) {
            n = std::max(n, 1) + 1;
            name = base + u'_' + QString::number(n);
        }
        return name;
    }

private:
    std::unordered_set<QString> m_names;
    std::unordered_map<QString, int> m_lastNumbers; ///< by text
};

/// The table without its rows of names. In a table without other rows than those in thead, they are
/// its rows.
SampledTable withoutHeader(const HtmlTable &table)
{
    const bool hasBody = table.rows > 0 || table.isExpanded;
    const bool namesAreRead = beginsWithNames(table) && !(hasBody && table.isFirstInHead);
    SampledTable sampled;
    sampled.path = table.path;
    sampled.isPageTable = true;
    sampled.headRows = static_cast<int>(table.isExpanded ? table.headRows : namesAreRead ? 1 : 0);
    sampled.rows = (hasBody ? table.rows : table.headRows) - sampled.headRows;
    sampled.values = sampled.rows * table.columns;
    sampled.levels = {{hasBody ? table.path : table.path + "/thead"_L1, u"tr"_s, {}}};
    return sampled;
}

} // namespace

SampledTable sampledTable(const HtmlTable &table, bool zeroBased)
{
    SampledTable sampled = withoutHeader(table);
    const bool hasNames = sampled.headRows > 0 || (table.isFirstInHead && !table.isExpanded);
    DistinctNames names;
    for (qint64 i = 1; i <= table.columns; ++i) {
        const QString text = table.firstRow.value(i - 1);
        sampled.levels.front().items.push_back({u"[%1]"_s.arg(zeroBased ? i - 1 : i),
                                                names.add(hasNames ? text : QString(), i), false});
        sampled.beginning << (text.isEmpty() ? QStringList() : QStringList(text));
    }
    return sampled;
}

SampledDocument sampleTables(XMLTokenizer &tokenizer, bool zeroBased, Spans spans)
{
    SampledDocument document;
    for (const HtmlTable &table : listTables(tokenizer, zeroBased, spans)) {
        document.add(sampledTable(table, zeroBased));
    }
    return document;
}

QString withoutTbody(QString path)
{
    constexpr auto kStep = "tbody/"_L1;
    constexpr auto kLastStep = "/tbody"_L1;
    path.replace("/tbody/"_L1, "/"_L1);
    if (path.endsWith(kLastStep)) {
        path.chop(kLastStep.size());
    }
    if (path.startsWith(kStep)) {
        path.remove(0, kStep.size());
    }
    return path;
}

} // namespace corvanta::markup
