// Any bytes as a legacy workbook: rows and columns ascend, and the content does not depend on how
// the bytes arrive or on what is read before.
#include "codecs/xls/legacy_workbook.h"
#include "fuzz/support/require.h"
#include "fuzz/support/sheet_content.h"

using namespace corvanta;
using namespace corvanta::xls;

namespace {

// An input may name one sheet tens of thousands of times.
constexpr size_t kMaxSheets = 20;

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
    const auto contentOf = [](LegacyWorkbook &from, size_t index) {
        return sheet::contentOf(from, index, sheet::RowOrder::Ascending);
    };
    const size_t sheets = (*workbook)->sheets().size();
    require(sheets == (*again)->sheets().size());
    require((*workbook)->definedNames().size() == (*again)->definedNames().size());
    for (size_t i = 0; i < sheets && i < kMaxSheets; ++i) {
        (void)(*workbook)->layout(sheets - 1 - i);
        require(contentOf(**workbook, i) == contentOf(**again, i));
    }
    return 0;
}
