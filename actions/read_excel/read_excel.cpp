#include "actions/read_excel/read_excel.h"

#include "codecs/xlsx/read/xlsx_reader.h"

namespace corvanta {

namespace {

sheet::WorkbookResult<std::unique_ptr<sheet::WorkbookReader>> makeReader(ByteSource &source)
{
    auto reader = xlsx::XlsxReader::open(source);
    if (!reader) {
        return reader.fault();
    }
    return std::unique_ptr<sheet::WorkbookReader>(*std::move(reader));
}

constexpr WorkbookFormat kFormat{makeReader, ".xlsx workbook", ".xls workbook", "readExcelOld"};

} // namespace

ActionReadExcel::ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters)
    : ParamAction(kReadExcelEntry, saved, parameters)
{
}

const WorkbookFormat &ActionReadExcel::workbookFormat() const
{
    return kFormat;
}

} // namespace corvanta
