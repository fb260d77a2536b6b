#include "actions/read_excel/read_excel_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

const ParamTable<ReadExcelParams> &readExcelParamTable()
{
    using P = ReadExcelParams;
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        shared::fileNameFromPin<P>(),
        shared::sheetSelection<P>("Whether sheetIdx or sheetName selects the sheet.",
                                  "Name of the sheet."),
        flag("firstLineContainsColumnNames", &P::firstLineContainsColumnNames)
            .label("The first row holds the column names")
            .meaning("Reads the column names from the first row. Off: columns are named after "
                     "their letters."),
        shared::outputFilenames<P>(),
        shared::abortIfMissing<P>(),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .requiredWhen("fileNameFromPin", {QStringLiteral("0")})
            .label("File")
            .meaning("Workbook to read, or a pattern such as *.xlsx."),
    };
    return table;
}

} // namespace corvanta
