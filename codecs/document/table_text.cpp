// A table (ECMA-376 part 1, 17.4):
//
//   <w:tbl><w:tblPr><w:tblStyle w:val="STYLE"/></w:tblPr>
//   <w:tblGrid><w:gridCol w:w="WIDTH"/>...</w:tblGrid>
//   <w:tr><w:tc><w:tcPr><w:tcW w:w="WIDTH" w:type="dxa"/></w:tcPr>
//     <w:p><w:r><w:t>TEXT</w:t></w:r></w:p></w:tc>...</w:tr>...
//   </w:tbl>
#include "codecs/document/table_text.h"

#include "codecs/opc/markup_scan.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace corvanta::document {

namespace {

constexpr int kMaxWidth = 31680; // 22 inches, the widest page
constexpr int kMinShare = 720;
constexpr QByteArrayView kCellEnd("</w:t></w:r></w:p></w:tc>");
constexpr char kTableGridDefinition[] =
    "<w:style w:type=\"table\" w:styleId=\"TableGrid\"><w:name w:val=\"Table Grid\"/>"
    "<w:basedOn w:val=\"TableNormal\"/><w:uiPriority w:val=\"59\"/>"
    "<w:pPr><w:spacing w:after=\"0\" w:line=\"240\" w:lineRule=\"auto\"/></w:pPr>"
    "<w:tblPr><w:tblBorders>"
    "<w:top w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "<w:left w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "<w:bottom w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "<w:right w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "<w:insideH w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "<w:insideV w:val=\"single\" w:sz=\"4\" w:space=\"0\" w:color=\"auto\"/>"
    "</w:tblBorders></w:tblPr></w:style>";

/// Nothing if the tag does not begin a style.
std::optional<QString> styleIdOf(const opc::Tag &tag)
{
    const bool opens = tag.kind != opc::Tag::Kind::Close && tag.local() == "style";
    const auto found =
        opens ? tag.attribute(opc::qualified(tag.prefix(), "styleId")) : std::nullopt;
    return found ? std::optional(opc::decoded(*found)) : std::nullopt;
}

} // namespace

bool definesStyle(QByteArrayView styles, const QString &id)
{
    for (opc::TagCursor cursor(styles); cursor.next();) {
        if (styleIdOf(cursor.tag()) == id) {
            return true;
        }
    }
    return false;
}

bool addTableGrid(QByteArray *styles)
{
    const qsizetype end = styles->lastIndexOf("</w:styles>");
    if (end < 0 || definesStyle(*styles, QString::fromLatin1(kTableGridStyle))) {
        return false;
    }
    styles->insert(end, kTableGridDefinition);
    return true;
}

QStringList tableStyles(QByteArrayView styles)
{
    QStringList ids;
    for (opc::TagCursor cursor(styles); cursor.next();) {
        const auto id = styleIdOf(cursor.tag());
        if (id &&
            cursor.tag().attribute(opc::qualified(cursor.tag().prefix(), "type")) == "table") {
            ids << *id;
        }
    }
    return ids;
}

std::vector<int> columnWidths(const QString &list, qsizetype columns, QStringList *invalid)
{
    std::vector<int> widths;
    for (const QString &entry :
         list.split(u',', list.isEmpty() ? Qt::SkipEmptyParts : Qt::KeepEmptyParts)) {
        bool isNumber = false;
        const int width = entry.trimmed().toInt(&isNumber);
        const bool isWidth = isNumber && width >= 1 && width <= kMaxWidth;
        if (!isWidth) {
            *invalid << entry;
        }
        widths.push_back(isWidth ? width : 0);
    }
    widths.resize(static_cast<size_t>(columns));
    qint64 used = 0;
    for (const int width : widths) {
        used += width;
    }
    const auto open = std::count(widths.begin(), widths.end(), 0);
    const qint64 share = open > 0 ? std::max<qint64>((kPageWidth - used) / open, kMinShare) : 0;
    std::replace(widths.begin(), widths.end(), 0, static_cast<int>(share));
    return widths;
}

TableText::TableText(const QString &styleId, const std::vector<int> &widths, const TextRules &rules)
    : m_rules(rules)
{
    m_head = "<w:tbl><w:tblPr><w:tblStyle w:val=\"" + opc::quotable(styleId) +
             "\"/></w:tblPr><w:tblGrid>";
    for (const int width : widths) {
        const QByteArray digits = QByteArray::number(width);
        m_head += "<w:gridCol w:w=\"" + digits + "\"/>";
        m_beginnings.push_back("<w:tc><w:tcPr><w:tcW w:w=\"" + digits +
                               "\" w:type=\"dxa\"/></w:tcPr><w:p><w:r><w:t>");
    }
    m_head += "</w:tblGrid>";
}

/// Room for `bytes` bytes at the end of the text.
inline char *TableText::room(qsizetype bytes)
{
    const auto needed = static_cast<size_t>(m_size + bytes);
    m_text.resize(std::max(needed, m_text.size())); // reserves twice as much when it grows
    return m_text.data() + m_size;
}

inline void TableText::put(QByteArrayView bytes)
{
    std::memcpy(room(bytes.size()), bytes.data(), static_cast<size_t>(bytes.size()));
    m_size += bytes.size();
}

void TableText::begin()
{
    put(m_head);
}

void TableText::beginRow()
{
    m_column = 0;
    put("<w:tr>");
}

TextCounts TableText::putCell(QStringView text)
{
    TextCounts counts;
    put(m_beginnings[m_column]);
    char *const out = room(roomForText(text, m_rules));
    m_size += putText(text, m_rules, out, &counts) - out;
    put(kCellEnd);
    ++m_column;
    return counts;
}

void TableText::endRow()
{
    put("</w:tr>");
}

void TableText::end()
{
    put("</w:tbl>");
}

} // namespace corvanta::document
