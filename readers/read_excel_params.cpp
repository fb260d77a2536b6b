#include "readers/read_excel_params.h"

namespace corvanta {

const ParamTable<ReadExcelParams> &readExcelParamTable()
{
    using P = ReadExcelParams;
    static const ParamTable<P> table{
        flag("fileNameFromPin", &P::fileNameFromPin)
            .label("Take the file name from input pin 0")
            .meaning("Takes the file name from the first column of the first row of input pin 0."),
        number("sheetMode", &P::sheetMode)
            .choices({"by number", "by name"})
            .label("Select the sheet")
            .meaning("Whether sheetIdx or sheetName selects the sheet."),
        text("sheetIdx", &P::sheetIdx)
            .label("Sheet number")
            .meaning("Number of the sheet, from 1."),
        text("sheetName", &P::sheetName).label("Sheet name").meaning("Name of the sheet."),
        flag("firstLineContainsColumnNames", &P::firstLineContainsColumnNames)
            .label("The first row holds the column names")
            .meaning("Takes the column names from the first row. Off: columns are named after "
                     "their letters."),
        flag("outputFilenames", &P::outputFilenames)
            .label("Add a column with the file name")
            .meaning("Adds the last column _FileNames with the name of the file of each row."),
        flag("abortIfMissing", &P::abortIfMissing)
            .label("A missing file is an error")
            .meaning("A missing file fails the action. Off: it is a warning."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Workbook to read, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
