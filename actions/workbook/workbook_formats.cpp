// The two formats of workbooks, each with the other one as the place to send a user to.
#include "actions/workbook/workbook_formats.h"

#include "codecs/xls/legacy_workbook.h"
#include "codecs/xlsx/read/xlsx_reader.h"

namespace corvanta {

namespace {

/// Open a workbook of one format.
template <class Reader>
sheet::WorkbookResult<std::unique_ptr<sheet::WorkbookReader>> makeReader(ByteSource &source)
{
    auto reader = Reader::open(source);
    if (!reader) {
        return reader.fault();
    }
    return std::unique_ptr<sheet::WorkbookReader>(*std::move(reader));
}

} // namespace

const WorkbookFormat kPackageWorkbookFormat{makeReader<xlsx::XlsxReader>,
                                            makeReader<xls::LegacyWorkbook>, ".xlsx workbook",
                                            ".xls workbook", "readExcelOld"};
const WorkbookFormat kLegacyWorkbookFormat{makeReader<xls::LegacyWorkbook>,
                                           makeReader<xlsx::XlsxReader>, ".xls workbook",
                                           ".xlsx workbook", "readExcel"};

} // namespace corvanta
