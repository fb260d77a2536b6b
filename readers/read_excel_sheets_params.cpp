#include "readers/read_excel_sheets_params.h"

namespace corvanta {

const ParamTable<ReadExcelSheetsParams> &readExcelSheetsParamTable()
{
    using P = ReadExcelSheetsParams;
    static const ParamTable<P> table{
        flag("fileNameFromPin", &P::fileNameFromPin)
            .label("Take the file name from input pin 0")
            .meaning("Takes the file name from the first column of the first row of input pin 0."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Workbook whose sheets are listed, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
