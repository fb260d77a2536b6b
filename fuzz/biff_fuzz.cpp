// Any bytes as a legacy workbook: rows and columns ascend, and the content does not depend on how
// the bytes arrive or on what is read before.
#include "codecs/xls/legacy_workbook.h"
#include "fuzz/support/require.h"

using namespace corvanta;
using namespace corvanta::xls;

namespace {

// An input may name one sheet tens of thousands of times.
constexpr size_t kMaxSheets = 20;

void addRow(const sheet::SheetRow &row, QByteArray *content)
{
    int before = -1;
    for (const sheet::SheetCell &cell : row.cells) {
        require(cell.column > before);
        before = cell.column;
        *content += QByteArray::number(row.number) + ',' + QByteArray::number(cell.column) + ' ';
        *content +=
            QByteArray::number(static_cast<int>(cell.kind) * 16 + static_cast<int>(cell.form));
        *content += QByteArray::number(cell.number, 'g', 17);
        for (const char16_t unit : cell.text) {
            *content += QByteArray::number(unit, 16);
        }
    }
}

QByteArray contentOf(LegacyWorkbook &workbook, size_t index)
{
    QByteArray content;
    auto rows = workbook.openSheet(index);
    if (!rows) {
        return rows.fault().detail.toUtf8();
    }
    sheet::SheetRow row;
    for (qint64 before = -1;; before = row.number) {
        const auto found = (*rows)->next(&row);
        if (!found || !*found) {
            return content + (found ? QByteArray() : found.fault().detail.toUtf8());
        }
        require(row.number > before);
        addRow(row, &content);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    MemorySource whole(bytes);
    MemorySource pieces(bytes, 7);
    auto workbook = LegacyWorkbook::open(whole);
    auto again = LegacyWorkbook::open(pieces);
    require(static_cast<bool>(workbook) == static_cast<bool>(again));
    if (!workbook) {
        return 0;
    }
    const size_t sheets = (*workbook)->sheets().size();
    require(sheets == (*again)->sheets().size());
    require((*workbook)->definedNames().size() == (*again)->definedNames().size());
    for (size_t i = 0; i < sheets && i < kMaxSheets; ++i) {
        (void)(*workbook)->layout(sheets - 1 - i);
        require(contentOf(**workbook, i) == contentOf(**again, i));
    }
    return 0;
}
