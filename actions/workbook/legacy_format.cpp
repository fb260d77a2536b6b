#include "actions/workbook/legacy_format.h"

#include "codecs/xls/legacy_workbook.h"

namespace corvanta {

namespace {

sheet::WorkbookResult<std::unique_ptr<sheet::WorkbookReader>> makeReader(ByteSource &source)
{
    auto reader = xls::LegacyWorkbook::open(source);
    if (!reader) {
        return reader.fault();
    }
    return std::unique_ptr<sheet::WorkbookReader>(*std::move(reader));
}

} // namespace

const WorkbookFormat kLegacyWorkbookFormat{makeReader, ".xls workbook", ".xlsx workbook",
                                           "readExcel"};

} // namespace corvanta
