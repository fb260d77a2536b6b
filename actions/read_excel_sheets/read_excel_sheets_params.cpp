#include "actions/read_excel_sheets/read_excel_sheets_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

const ParamTable<ReadExcelSheetsParams> &readExcelSheetsParamTable()
{
    using P = ReadExcelSheetsParams;
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        shared::fileNameFromPin<P>(),
        shared::fileName<P>("Workbook whose sheets are listed, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
