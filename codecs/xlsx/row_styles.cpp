// A row and its cells (ECMA-376 part 1, 18.3.1.73 and 18.3.1.4):
//
//     <row r="9"><c r="A9" s="3"><v>1</v></c><c r="C9" s="4"/><c/></row>
//
//     column A: 3, B: none, C: 4, D: none (a cell without a reference follows the one before)
#include "codecs/xlsx/row_styles.h"

#include "codecs/opc/markup_scan.h"
#include "codecs/opc/part_names.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/cell_range.h"

#include <algorithm>

namespace corvanta::xlsx {

void RowStyles::push(QByteArrayView piece, const std::vector<QByteArray> &rowStarts)
{
    // A larger row is not kept; its cells then have no formats.
    constexpr qsizetype kMaxRowBytes = qsizetype(16) << 20;
    if (rowStarts.empty()) {
        return;
    }
    m_row += piece;
    qsizetype last = -1;
    for (const QByteArray &start : rowStarts) {
        last = std::max(last, m_row.lastIndexOf(start));
    }
    if (last >= 0) {
        const QByteArrayView before = QByteArrayView(m_row).first(last);
        m_hasRowBefore |= std::any_of(rowStarts.begin(), rowStarts.end(),
                                      [&](const auto &start) { return before.contains(start); });
        m_row.remove(0, last);
    }
    if (m_row.size() > kMaxRowBytes) {
        m_row.clear();
    }
}

std::vector<std::optional<quint64>> RowStyles::styles() const
{
    std::vector<std::optional<quint64>> styles;
    if (!m_hasRowBefore) {
        return styles;
    }
    size_t column = 0;
    for (opc::TagCursor cursor(m_row); cursor.next();) {
        const opc::Tag &tag = cursor.tag();
        if (tag.local() != "c" || tag.kind == opc::Tag::Kind::Close) {
            continue;
        }
        const auto reference = tag.attribute("r");
        const auto range = reference ? parseRange(*reference) : std::nullopt;
        column = range ? static_cast<size_t>(range->firstColumn) : column;
        if (column >= sheet::kMaxColumns) {
            break;
        }
        const auto style = tag.attribute("s");
        styles.resize(std::max(styles.size(), column + 1));
        styles[column++] = style ? opc::partNumber(*style) : std::nullopt;
    }
    return styles;
}

} // namespace corvanta::xlsx
