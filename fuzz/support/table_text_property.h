// Rows of any content as a table of a Word document: it is an XML element with all cells.
#pragma once
#include "codecs/document/table_text.h"
#include "codecs/opc/outline.h"
#include "fuzz/support/require.h"
#include "fuzz/support/table.h"

namespace corvanta::document {

/// Three flags: rules. A list of widths, a style and the table follow.
inline void checkTableText(Feed feed)
{
    TextRules rules;
    rules.breaksAtLineEnds = feed.flag();
    rules.breaksAtBackslashN = feed.flag();
    rules.closesText = feed.flag();
    const QString list = feed.string(feed.below(30));
    const QString style = feed.string(feed.below(8));
    const FuzzTable table(feed);
    const RowView columns = table.row(0);
    QStringList invalid;
    const std::vector<int> widths = columnWidths(list, columns.columns, &invalid);
    require(widths.size() == static_cast<size_t>(columns.columns));

    TableText text(style, widths, rules);
    QByteArray all = "<w:tbls>";
    text.begin();
    for (int row = 0; row < table.rowCount(); ++row) {
        text.beginRow();
        for (int i = 0; i < columns.columns; ++i) {
            const bool isText = columns.type(i) == cell::Type::Text;
            const auto view = isText ? cell::readText(table.row(row).cells[i]).view()
                                     : std::u16string_view(u"1 & 2 < 3");
            (void)text.putCell(QStringView(view.data(), static_cast<qsizetype>(view.size())));
        }
        text.endRow();
        all += text.text();
        text.clear();
    }
    text.end();
    all += text.text();
    all += "</w:tbls>";
    require(all.count("<w:tc>") == qsizetype(table.rowCount()) * columns.columns);
    require(all.count("</w:tc>") == all.count("<w:tc>"));
    require(bool(opc::Outline::readRootedIn(all, "tbls")));
    (void)definesStyle(all, style);
}

} // namespace corvanta::document
