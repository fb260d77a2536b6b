// The styles part (ECMA-376 part 1, 18.8.39), a sequence of tables:
//
//   <styleSheet>
//     <numFmts count>      <numFmt numFmtId formatCode/> ...         own number formats
//     <fonts count>        <font>...</font> ...                      by index, from 0
//     <fills/> <borders/> <cellStyleXfs/>
//     <cellXfs count>      <xf numFmtId fontId fillId .../> ...      by index: the s attribute of c
//     <cellStyles/> <dxfs/> ...
//   </styleSheet>
//
// A table that is missing is inserted before the first later one.
#include "codecs/xlsx/styles_part.h"

#include "codecs/opc/part_names.h"
#include "codecs/opc/splices.h"

#include <QByteArrayList>

#include <algorithm>
#include <array>
#include <functional>
#include <initializer_list>

namespace corvanta::xlsx {

namespace {

using opc::Element;
using opc::Error;
using opc::Outline;
using opc::Splices;
using opc::Tag;

// Far above the ids that programs give to own formats, which start at 164: an id at or above it was
// added by an update, and its format can be used again.
constexpr quint64 kFirstFormatId = 2001;
constexpr char kAppliesNumberFormat[] = " applyNumberFormat=\"1\"/>"; // rest of an xf tag

/// Reads the tables of a part and collects the changes to them.
class StylesEditor
{
public:
    StylesEditor(QByteArrayView text, const Outline &outline)
        : m_text(text)
        , m_outline(outline)
        , m_splices(text)
    {
        readNumberFormats();
    }

    quint64 addNumberFormat(const QString &code);
    /// Add the new number formats to the part; once, before addCellFormats() and putTable().
    void putNumberFormats();
    quint64 addHyperlinkFont();
    StylesChange addCellFormats(quint64 dateFormatId, quint64 fontId);
    quint64 addDateFormat(const DateFormat &format);
    LookStyles addLook(const SheetLook &look);
    QByteArray apply() { return m_splices.apply(); }
    /// The id of the number format, which is added if the part needs it.
    quint64 idOf(const DateFormat &format)
    {
        return format.code.isEmpty() ? static_cast<quint64>(format.builtinId)
                                     : addNumberFormat(QString::fromLatin1(format.code));
    }

private:
    struct NumberFormat
    {
        quint64 id;
        QString code;
    };
    /// The entries of a table, and those that are added to it.
    struct EntryTable
    {
        QByteArrayList entries;
        qsizetype known = 0;
    };

    void readNumberFormats();
    EntryTable readTable(QByteArrayView name, QByteArrayView entry) const;
    /// The index of an entry, which is added if the table does not have it.
    static quint64 indexIn(EntryTable *table, const QByteArray &entry);
    void putTable(QByteArrayView name, const EntryTable &table,
                  std::initializer_list<QByteArrayView> earlier);
    QByteArray boldFont() const;
    EntryTable readFills() const;
    EntryTable readCellFormats() const;
    void putCellFormats(const EntryTable &cells)
    {
        putTable("cellXfs", cells, {"numFmts", "fonts", "fills", "borders", "cellStyleXfs"});
    }
    quint64 addHeaderFont(const SheetLook &look);
    quint64 addHeaderFill(const SheetLook &look);

    /// Append `entries` to a table, which then has `count` entries; a missing one is inserted.
    void put(QByteArrayView name, quint64 count, const QByteArray &entries,
             std::initializer_list<QByteArrayView> earlier);
    void append(int table, quint64 count, const QByteArray &entry);
    std::optional<quint64> findFormats(const std::vector<int> &formats, const QByteArray &first,
                                       const QByteArray &second) const;
    /// Insert a table with `count` entries after the tables `earlier`.
    void addTable(QByteArrayView name, quint64 count, const QByteArray &entries,
                  std::initializer_list<QByteArrayView> earlier);
    QByteArray element(QByteArrayView local, const QByteArray &rest) const
    {
        return '<' + m_outline.qualified(local) + rest;
    }
    QByteArray hyperlinkFont() const;
    QByteArray cellFormat(quint64 numberFormat, quint64 font, const char *rest) const;
    /// The entries of a table; none without the table.
    std::vector<int> entriesOf(std::optional<int> table, QByteArrayView local) const
    {
        return table ? m_outline.children(*table, local) : std::vector<int>();
    }
    /// The whole element as it is in the part.
    QByteArrayView textOf(int index) const
    {
        const Element &one = m_outline.element(index);
        return m_text.sliced(one.tag.begin, one.end - one.tag.begin);
    }

    QByteArrayView m_text;
    const Outline &m_outline;
    Splices m_splices;
    std::vector<NumberFormat> m_formats;
    size_t m_knownFormats = 0; // of m_formats, those of the part
};

void StylesEditor::put(QByteArrayView name, quint64 count, const QByteArray &entries,
                       std::initializer_list<QByteArrayView> earlier)
{
    if (const auto table = m_outline.child(0, name)) {
        append(*table, count, entries);
    } else {
        addTable(name, count, entries, earlier);
    }
}

void StylesEditor::append(int table, quint64 count, const QByteArray &entry)
{
    const Element &place = m_outline.element(table);
    m_splices.setAttribute(place.tag, "count", QByteArray::number(count));
    m_splices.append(place, entry);
}

void StylesEditor::addTable(QByteArrayView name, quint64 count, const QByteArray &entries,
                            std::initializer_list<QByteArrayView> earlier)
{
    const QByteArray table = element(name, " count=\"" + QByteArray::number(count) + "\">" +
                                               entries + "</" + m_outline.qualified(name) + '>');
    qsizetype at = m_outline.root().tag.end;
    for (const QByteArrayView before : earlier) {
        for (const int index : m_outline.children(0, before)) {
            at = std::max(at, m_outline.element(index).end);
        }
    }
    m_splices.insert(at, table);
}

// Ids need not be in order, and built-in formats may be listed too.
void StylesEditor::readNumberFormats()
{
    for (const int index : entriesOf(m_outline.child(0, "numFmts"), "numFmt")) {
        const Tag &tag = m_outline.element(index).tag;
        const auto id = opc::partNumber(tag.attribute("numFmtId").value_or(QByteArrayView()));
        m_formats.push_back({id.value_or(0), opc::attributeText(tag, "formatCode")});
    }
    m_knownFormats = m_formats.size();
}

/// Returns the id of the format, which is used again if the part has it.
quint64 StylesEditor::addNumberFormat(const QString &code)
{
    quint64 id = kFirstFormatId;
    for (const NumberFormat &format : m_formats) {
        if (format.id < kFirstFormatId) {
            continue;
        }
        if (format.code == code) {
            return format.id;
        }
        id = std::max(id, format.id + 1);
    }
    m_formats.push_back({id, code});
    return id;
}

void StylesEditor::putNumberFormats()
{
    QByteArray entries;
    for (size_t i = m_knownFormats; i < m_formats.size(); ++i) {
        entries +=
            element("numFmt", " numFmtId=\"" + QByteArray::number(m_formats[i].id) +
                                  "\" formatCode=\"" + opc::quotable(m_formats[i].code) + "\"/>");
    }
    if (!entries.isEmpty()) {
        put("numFmts", m_formats.size(), entries, {});
    }
}

/// Underlined, in the theme's color of links.
QByteArray StylesEditor::hyperlinkFont() const
{
    QByteArray font = element("font", ">") + element("u", "/>") + element("sz", " val=\"11\"/>") +
                      element("color", " theme=\"10\"/>") + element("name", " val=\"Calibri\"/>") +
                      element("family", " val=\"2\"/>") + element("scheme", " val=\"minor\"/>");
    return font + "</" + m_outline.qualified("font") + '>';
}

quint64 StylesEditor::addHyperlinkFont()
{
    const QByteArray font = hyperlinkFont();
    const auto table = m_outline.child(0, "fonts");
    const std::vector<int> fonts = entriesOf(table, "font");
    for (size_t i = 0; i < fonts.size(); ++i) {
        if (textOf(fonts[i]) == font) {
            return i;
        }
    }
    // Cells without a format use font 0, so the first entry must not be ours.
    const QByteArray entries = (fonts.empty() ? element("font", "/>") : QByteArray()) + font;
    const quint64 count = std::max<quint64>(fonts.size() + 1, 2);
    put("fonts", count, entries, {"numFmts"});
    return count - 1;
}

/// The index of two formats with this text that follow each other.
std::optional<quint64> StylesEditor::findFormats(const std::vector<int> &formats,
                                                 const QByteArray &first,
                                                 const QByteArray &second) const
{
    for (size_t i = 0; i + 1 < formats.size(); ++i) {
        if (textOf(formats[i]) == first && textOf(formats[i + 1]) == second) {
            return i;
        }
    }
    return std::nullopt;
}

/// `rest` ends the tag.
QByteArray StylesEditor::cellFormat(quint64 numberFormat, quint64 font, const char *rest) const
{
    return element("xf", " numFmtId=\"" + QByteArray::number(numberFormat) + "\" fontId=\"" +
                             QByteArray::number(font) +
                             "\" fillId=\"0\" borderId=\"0\" xfId=\"0\"" + rest);
}

/// The formats of dates and of hyperlinks follow each other; those of an earlier update are used
/// again, so that updates do not let the table grow.
StylesChange StylesEditor::addCellFormats(quint64 dateFormatId, quint64 fontId)
{
    const auto table = m_outline.child(0, "cellXfs");
    const std::vector<int> known = entriesOf(table, "xf");
    const QByteArray date = cellFormat(dateFormatId, 0, kAppliesNumberFormat);
    const QByteArray link = cellFormat(0, fontId, "/>");
    if (const auto found = findFormats(known, date, link)) {
        return {m_splices.apply(), *found, *found + 1, false};
    }
    // Cells without a format use format 0.
    const QByteArray entries =
        (known.empty() ? cellFormat(0, 0, "/>") : QByteArray()) + date + link;
    const quint64 count = std::max<quint64>(known.size(), 1) + 2;
    put("cellXfs", count, entries, {"numFmts", "fonts", "fills", "borders", "cellStyleXfs"});
    return {m_splices.apply(), count - 2, count - 1, !table};
}

// ---- Formats of dates, and the look of a sheet.

StylesEditor::EntryTable StylesEditor::readTable(QByteArrayView name, QByteArrayView entry) const
{
    EntryTable table;
    for (const int index : entriesOf(m_outline.child(0, name), entry)) {
        table.entries << textOf(index).toByteArray();
    }
    table.known = table.entries.size();
    return table;
}

// Equal entries are one format to programs, so that updates do not let the tables grow.
quint64 StylesEditor::indexIn(EntryTable *table, const QByteArray &entry)
{
    qsizetype index = table->entries.indexOf(entry);
    if (index < 0) {
        index = table->entries.size();
        table->entries << entry;
    }
    return static_cast<quint64>(index);
}

/// Unchanged tables stay as they are in the file.
void StylesEditor::putTable(QByteArrayView name, const EntryTable &table,
                            std::initializer_list<QByteArrayView> earlier)
{
    const QByteArray added = table.entries.mid(table.known).join();
    if (!added.isEmpty()) {
        put(name, static_cast<quint64>(table.entries.size()), added, earlier);
    }
}

/// The first font with its name and size, in bold: the element b comes first (18.8.22).
QByteArray StylesEditor::boldFont() const
{
    const QByteArray end = "</" + m_outline.qualified("font") + '>';
    const std::vector<int> fonts = entriesOf(m_outline.child(0, "fonts"), "font");
    if (fonts.empty() || m_outline.element(fonts.front()).isEmptyTag()) {
        return element("font", ">") + element("b", "/>") + end;
    }
    QByteArray font = textOf(fonts.front()).toByteArray();
    if (m_outline.children(fonts.front(), "b").empty()) {
        const Tag &tag = m_outline.element(fonts.front()).tag;
        font.insert(tag.end - tag.begin, element("b", "/>"));
    }
    return font;
}

// Without a bold header: font 0, that of cells without a format.
quint64 StylesEditor::addHeaderFont(const SheetLook &look)
{
    if (!look.hasBoldHeader) {
        return 0;
    }
    EntryTable fonts = readTable("fonts", "font");
    if (fonts.entries.isEmpty()) {
        fonts.entries << element("font", "/>");
    }
    const quint64 index = indexIn(&fonts, boldFont());
    putTable("fonts", fonts, {"numFmts"});
    return index;
}

/// Programs use the first two fills for "none" and a pattern, whatever they are.
StylesEditor::EntryTable StylesEditor::readFills() const
{
    constexpr std::array<const char *, 2> kPatterns{"none", "gray125"};
    EntryTable fills = readTable("fills", "fill");
    for (auto i = static_cast<size_t>(fills.known); i < kPatterns.size(); ++i) {
        fills.entries << element("fill", ">") +
                             element("patternFill",
                                     " patternType=\"" + QByteArray(kPatterns[i]) + "\"/>") +
                             "</" + m_outline.qualified("fill") + '>';
    }
    return fills;
}

// A solid pattern is drawn in its foreground color (18.8.32).
quint64 StylesEditor::addHeaderFill(const SheetLook &look)
{
    if (!look.hasFilledHeader) {
        return 0;
    }
    EntryTable fills = readFills();
    const quint64 index = indexIn(
        &fills, element("fill", ">") + element("patternFill", " patternType=\"solid\">") +
                    element("fgColor", " rgb=\"FFDDEBF7\"/>") +
                    element("bgColor", " indexed=\"64\"/>") + "</" +
                    m_outline.qualified("patternFill") + "></" + m_outline.qualified("fill") + '>');
    putTable("fills", fills, {"numFmts", "fonts"});
    return index;
}

StylesEditor::EntryTable StylesEditor::readCellFormats() const
{
    EntryTable cells = readTable("cellXfs", "xf");
    if (cells.entries.isEmpty()) {
        cells.entries << cellFormat(0, 0, "/>"); // of cells without a format
    }
    return cells;
}

quint64 StylesEditor::addDateFormat(const DateFormat &format)
{
    const quint64 id = idOf(format);
    putNumberFormats();
    EntryTable cells = readCellFormats();
    const quint64 index = indexIn(&cells, cellFormat(id, 0, kAppliesNumberFormat));
    putCellFormats(cells);
    return index;
}

/// Tables that are missing are inserted in the order of the calls, which is that of the schema.
LookStyles StylesEditor::addLook(const SheetLook &look)
{
    std::vector<quint64> formats;
    for (const QString &code : look.formats) {
        formats.push_back(code.isEmpty() ? 0 : addNumberFormat(code));
    }
    putNumberFormats();
    const QByteArray font = QByteArray::number(addHeaderFont(look));
    const QByteArray fill = QByteArray::number(addHeaderFill(look));
    EntryTable cells = readCellFormats();
    LookStyles styles;
    if (look.hasBoldHeader || look.hasFilledHeader) {
        styles.header = indexIn(&cells, element("xf", " numFmtId=\"0\" fontId=\"" + font +
                                                          "\" fillId=\"" + fill +
                                                          "\" borderId=\"0\" xfId=\"0\" "
                                                          "applyFont=\"1\" applyFill=\"1\"/>"));
    }
    for (const quint64 format : formats) {
        styles.columns.emplace_back();
        if (format != 0) {
            styles.columns.back() = indexIn(&cells, cellFormat(format, 0, kAppliesNumberFormat));
        }
    }
    putCellFormats(cells);
    return styles;
}

} // namespace

DateFormat dateFormatAt(int index)
{
    constexpr std::array<const char *, 3> kOwnCodes{"yyyy/mm/dd", "yyyy/mm/dd\\ h:mm",
                                                    "yyyy/mm/dd\\ h:mm:ss"};
    const int own = qMax(index, 0);
    if (own < static_cast<int>(kOwnCodes.size())) {
        return {0, kOwnCodes[static_cast<size_t>(own)]};
    }
    return {numberFormatId(index, 0), {}};
}

int numberFormatId(int index, int ownBase)
{
    constexpr int kBuiltIn[] = {22, 14, 15, 16, 17, 18, 19, 20, 21}; // formats 3 to 11
    return index < 3 ? ownBase + qMax(index, 0) : kBuiltIn[qMin(index, 11) - 3];
}

namespace {

/// Edit the part `text`; `edit` gets its editor.
template <class T>
Result<T, Error> edited(QByteArrayView text, const std::function<T(StylesEditor &)> &edit)
{
    const auto outline = Outline::read(text);
    if (!outline) {
        return outline.fault();
    }
    if (outline->root().tag.local() != QByteArrayView("styleSheet")) {
        return Fault<Error>{Error::Unexpected};
    }
    if (outline->root().isEmptyTag()) {
        // <styleSheet/> has no place for tables: give it an end tag first.
        Splices opened(text);
        opened.append(outline->root(), {});
        return edited<T>(opened.apply(), edit);
    }
    StylesEditor editor(text, *outline);
    return edit(editor);
}

/// The same, and replace `text`; without effect after a fault.
template <class T>
Result<T, Error> replaced(QByteArray *text, const std::function<T(StylesEditor &)> &edit)
{
    QByteArray changed;
    auto result = edited<T>(*text, [&](StylesEditor &editor) {
        T added = edit(editor);
        changed = editor.apply();
        return added;
    });
    if (result) {
        *text = changed;
    }
    return result;
}

} // namespace

Result<StylesChange, Error> changedStyles(QByteArrayView text, const DateFormat &dateFormat)
{
    return edited<StylesChange>(text, [&](StylesEditor &editor) {
        const quint64 dateFormatId = editor.idOf(dateFormat);
        editor.putNumberFormats();
        const quint64 fontId = editor.addHyperlinkFont();
        return editor.addCellFormats(dateFormatId, fontId);
    });
}

Result<quint64, Error> addDateStyle(QByteArray *text, const DateFormat &format)
{
    return replaced<quint64>(text,
                             [&](StylesEditor &editor) { return editor.addDateFormat(format); });
}

Result<LookStyles, Error> addLook(QByteArray *text, const SheetLook &look)
{
    return replaced<LookStyles>(text, [&](StylesEditor &editor) { return editor.addLook(look); });
}

} // namespace corvanta::xlsx
