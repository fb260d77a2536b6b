// Tables in the HTML standard (section 4.9); "tbody" is dropped by the tokenizer:
//
//     <table>
//       <thead> <tr> <th>name</th> <th>name</th> </tr> </thead>
//       <tbody> <tr> <td>cell</td> <td>cell</td> </tr> </tbody>
//       <tfoot> <tr> <td>cell</td> <td>cell</td> </tr> </tfoot>
//     </table>
#include "codecs/markup/sample/html_tables.h"

#include "codecs/markup/tree/path.h"

#include <map>
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
    TableLister(XMLTokenizer &tokenizer, bool zeroBased)
        : m_tokenizer(tokenizer)
        , m_zeroBased(zeroBased)
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
    };

    void begin();
    void beginTable();
    void beginRow();
    void beginCell();
    void end();
    void addText();
    QString pathToHere() const;
    QString stepTo(const Element &element) const;

    XMLTokenizer &m_tokenizer;
    bool m_zeroBased;
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
    if (name == u"table") {
        beginTable();
    } else if (name == u"tr") {
        beginRow();
    } else if (name == u"td" || name == u"th") {
        beginCell();
    }
}

void TableLister::beginTable()
{
    if (m_tables.size() < kMaxTables && m_open.size() <= kMaxTableDepth) {
        m_openTables.push_back({m_open.size(), m_tables.size()});
        m_tables.push_back({pathToHere(), 0, 0, 0, {}});
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

/// Use a text of one of the first two rows as evidence for the names of the columns.
void TableLister::addText()
{
    if (m_openTables.empty() || m_openTables.back().cells == 0) {
        return;
    }
    const OpenTable &open = m_openTables.back();
    HtmlTable &table = m_tables[open.table];
    const qint64 row = table.rows + table.headRows;
    // Later rows say no more about the header than the second one.
    if (row > 2) {
        return;
    }
    const QString text = QString::fromUtf16(m_tokenizer.text().data(), m_tokenizer.length());
    const bool hasDigits =
        std::any_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
    if (row == 2) {
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
    if (!m_openTables.empty() && m_openTables.back().depth == m_open.size()) {
        m_openTables.pop_back();
    }
    m_open.pop_back();
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

std::vector<HtmlTable> listTables(XMLTokenizer &tokenizer, bool zeroBased)
{
    return TableLister(tokenizer, zeroBased).list();
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

/// The text, or the text with the first number from 2 that makes it one that is not in `names`.
QString distinctName(const QString &text, const std::unordered_set<QString> &names)
{
    QString name = text;
    for (int n = 2; names.contains(name); ++n) {
        name = text + u'_' + QString::number(n);
    }
    return name;
}

/// A name that is not in `names`, made of the text or of the number of the column; adds it.
QString newName(const QString &text, qint64 number, std::unordered_set<QString> *names)
{
    const QString base = text.isEmpty() ? u"column %1"_s.arg(number) : text;
    QString name = distinctName(base, *names);
    names->insert(name);
    return name;
}

} // namespace

SampledTable sampledTable(const HtmlTable &table, bool zeroBased)
{
    const bool hasBody = table.rows > 0;
    const bool namesAreRead = beginsWithNames(table) && !(hasBody && table.isFirstInHead);
    const bool hasNames = namesAreRead || table.isFirstInHead;
    SampledTable sampled;
    sampled.path = table.path;
    sampled.isPageTable = true;
    sampled.headRows = namesAreRead ? 1 : 0;
    sampled.rows = (hasBody ? table.rows : table.headRows) - sampled.headRows;
    sampled.values = sampled.rows * table.columns;
    Level level{hasBody ? table.path : table.path + "/thead"_L1, u"tr"_s, {}};
    std::unordered_set<QString> names;
    for (qint64 i = 1; i <= table.columns; ++i) {
        const QString text = table.firstRow.value(i - 1);
        level.items.push_back({u"[%1]"_s.arg(zeroBased ? i - 1 : i),
                               newName(hasNames ? text : QString(), i, &names), false});
        sampled.beginning << (text.isEmpty() ? QStringList() : QStringList(text));
    }
    sampled.levels = {std::move(level)};
    return sampled;
}

SampledDocument sampleTables(XMLTokenizer &tokenizer, bool zeroBased)
{
    SampledDocument document;
    for (const HtmlTable &table : listTables(tokenizer, zeroBased)) {
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
