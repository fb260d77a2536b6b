#include "readers/read_excel_params.h"

namespace corvanta {

const ParamTable<ReadExcelParams> &readExcelParamTable()
{
    using P = ReadExcelParams;
    static const ParamTable<P> table{
        flag("fileNameFromPin", &P::fileNameFromPin)
            .label("Take the file name from input pin 0")
            .meaning("From the first column of its first row."),
        number("sheetMode", &P::sheetMode)
            .choices({"by number", "by name"})
            .label("Select the sheet")
            .meaning("By sheetIdx or by sheetName."),
        text("sheetIdx", &P::sheetIdx)
            .label("Sheet number")
            .meaning("Number of the sheet, from 1."),
        text("sheetName", &P::sheetName).label("Sheet name").meaning("Name of the sheet."),
        flag("firstLineContainsColumnNames", &P::firstLineContainsColumnNames)
            .label("The first row holds the column names")
            .meaning("Off: the columns are named after their letters."),
        flag("outputFilenames", &P::outputFilenames)
            .label("Add a column with the file name")
            .meaning("The last column, _FileNames."),
        flag("abortIfMissing", &P::abortIfMissing)
            .label("A missing file is an error")
            .meaning("Off: it is a warning."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Workbook to read, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
