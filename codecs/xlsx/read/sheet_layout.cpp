// The parts of a sheet that are read; all others are skipped:
//
//   <worksheet>
//     <cols><col min="2" max="3" hidden="1"/></cols>
//     <sheetData> rows </sheetData>
//     <mergeCells><mergeCell ref="A1:C1"/></mergeCells>
//   </worksheet>
#include "codecs/xlsx/read/sheet_layout.h"

#include "base/number.h"
#include "codecs/sheet/cell_area.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/read/cell_scan.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::xlsx {

using sheet::WorkbookError;

namespace {

/// The number of an attribute, from 1; 0 for anything else.
int numberOf(const opc::Tag &tag, QByteArrayView name)
{
    const QByteArrayView text = tag.attribute(name).value_or(QByteArrayView());
    quint64 number = 0;
    parseUInt({text.data(), static_cast<size_t>(text.size())}, sheet::kMaxColumns, &number);
    return static_cast<int>(number);
}

/// Take an item before or after the rows.
void takeLayoutItem(const MarkupItem &item, sheet::SheetLayout *layout)
{
    if (item.isOpening("col") && isTrue(item.tag.attribute("hidden"))) {
        sheet::CellArea columns;
        columns.firstColumn = numberOf(item.tag, "min") - 1;
        columns.lastColumn = numberOf(item.tag, "max") - 1;
        if (columns.firstColumn >= 0) {
            layout->hiddenColumns.push_back(columns);
        }
    } else if (item.isOpening("mergeCell")) {
        const QByteArrayView text = item.tag.attribute("ref").value_or(QByteArrayView());
        if (const auto area = sheet::parseArea(QString::fromLatin1(text))) {
            layout->merged.push_back(*area);
        }
    }
}

/// The name of the end tag is found many times as fast as the markup is split into items. A text
/// that looks like it ends the skip too early, which costs only time.
sheet::WorkbookResult<void> skipRows(PartText &part)
{
    constexpr QByteArrayView kName("sheetData");
    for (;;) {
        const QByteArrayView text(part.begin(), part.end());
        const qsizetype at = text.indexOf(kName);
        const qsizetype skipped = at >= 0 ? at + kName.size() : text.size() - kName.size();
        part.consumeTo(text.data() + std::max<qsizetype>(0, skipped));
        if (at > 0 && (text[at - 1] == '/' || text[at - 1] == ':')) {
            return {};
        }
        if (at >= 0) {
            continue;
        }
        const auto more = part.extend();
        if (!more) {
            return more.fault();
        }
        if (!*more) {
            // The reading of the rows reports that the part ends too early.
            part.consumeTo(part.end());
            return {};
        }
    }
}

} // namespace

sheet::WorkbookResult<sheet::SheetLayout> readSheetLayout(PartText &part)
{
    sheet::SheetLayout layout;
    for (;;) {
        const auto item = part.nextItem();
        if (!item) {
            return item.fault();
        }
        if (item->kind == MarkupItem::Kind::End) {
            return layout;
        }
        if (item->isOpening("sheetData") && item->tag.kind == opc::Tag::Kind::Open) {
            if (const auto skipped = skipRows(part); !skipped) {
                return skipped.fault();
            }
            continue;
        }
        takeLayoutItem(*item, &layout);
        constexpr size_t kMaxAreas = size_t(1) << 20;
        if (layout.merged.size() + layout.hiddenColumns.size() > kMaxAreas) {
            return part.fault(WorkbookError::TooLarge, u"the sheet has too many areas"_s);
        }
    }
}

} // namespace corvanta::xlsx
