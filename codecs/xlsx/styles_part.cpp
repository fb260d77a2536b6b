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

#include <algorithm>
#include <array>
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

/// Reads the tables of a part and collects the changes to them.
class StylesEditor
{
public:
    StylesEditor(QByteArrayView text, const Outline &outline)
        : m_text(text)
        , m_outline(outline)
        , m_splices(text)
    {
    }

    quint64 addNumberFormat(const QByteArray &code);
    quint64 addHyperlinkFont();
    StylesChange addCellFormats(quint64 dateFormatId, quint64 fontId);

private:
    /// Append `entry` to a table, which then has `count` entries.
    void append(int table, quint64 count, const QByteArray &entry);
    void addNumberFormat(std::optional<int> table, quint64 count, quint64 id,
                         const QByteArray &code);
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
};

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

/// Returns the id of the format, which is used again if the part has it.
quint64 StylesEditor::addNumberFormat(const QByteArray &code)
{
    const auto table = m_outline.child(0, "numFmts");
    const std::vector<int> entries = entriesOf(table, "numFmt");
    quint64 id = kFirstFormatId;
    for (const int index : entries) {
        const Tag &tag = m_outline.element(index).tag;
        const auto usedId = opc::partNumber(tag.attribute("numFmtId").value_or(QByteArrayView()));
        if (!usedId || *usedId < kFirstFormatId) {
            continue;
        }
        if (opc::decoded(tag.attribute("formatCode").value_or(QByteArrayView())).toUtf8() == code) {
            return *usedId;
        }
        id = std::max(id, *usedId + 1);
    }
    addNumberFormat(table, entries.size() + 1, id, code);
    return id;
}

void StylesEditor::addNumberFormat(std::optional<int> table, quint64 count, quint64 id,
                                   const QByteArray &code)
{
    const QByteArray entry = element("numFmt", " numFmtId=\"" + QByteArray::number(id) +
                                                   "\" formatCode=\"" + code + "\"/>");
    if (table) {
        append(*table, count, entry);
    } else {
        addTable("numFmts", count, entry, {});
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
    if (table) {
        append(*table, count, entries);
    } else {
        addTable("fonts", count, entries, {"numFmts"});
    }
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
    const QByteArray date = cellFormat(dateFormatId, 0, " applyNumberFormat=\"1\"/>");
    const QByteArray link = cellFormat(0, fontId, "/>");
    if (const auto found = findFormats(known, date, link)) {
        return {m_splices.apply(), *found, *found + 1, false};
    }
    // Cells without a format use format 0.
    const QByteArray entries =
        (known.empty() ? cellFormat(0, 0, "/>") : QByteArray()) + date + link;
    const quint64 count = std::max<quint64>(known.size(), 1) + 2;
    if (table) {
        append(*table, count, entries);
    } else {
        addTable("cellXfs", count, entries,
                 {"numFmts", "fonts", "fills", "borders", "cellStyleXfs"});
    }
    return {m_splices.apply(), count - 2, count - 1, !table};
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

Result<StylesChange, Error> changedStyles(QByteArrayView text, const DateFormat &dateFormat)
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
        return changedStyles(opened.apply(), dateFormat);
    }
    StylesEditor editor(text, *outline);
    const bool isBuiltin = dateFormat.code.isEmpty();
    const quint64 dateFormatId = isBuiltin ? static_cast<quint64>(dateFormat.builtinId)
                                           : editor.addNumberFormat(dateFormat.code);
    const quint64 fontId = editor.addHyperlinkFont();
    return editor.addCellFormats(dateFormatId, fontId);
}

} // namespace corvanta::xlsx
