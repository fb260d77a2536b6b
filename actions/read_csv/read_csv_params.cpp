#include "actions/read_csv/read_csv.h"

namespace corvanta {

const ParamTable<ReadCsvParams> &ActionReadCsv::paramTable()
{
    static const ParamTable<ReadCsvParams> table{
        text("fileName", &ReadCsvParams::fileName)
            .inputFile()
            .required()
            .always()
            .label("File")
            .meaning("Text file to read, UTF-8; also compressed as .gz or .Z."),
        text("separator", &ReadCsvParams::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields."),
        text("types", &ReadCsvParams::types)
            .label("Column types")
            .meaning("One letter per column, separated by commas: K (whole number), F (decimal "
                     "number), U (text). "
                     "Columns without a letter are texts."),
        flag("header", &ReadCsvParams::header)
            .label("First line holds the column names")
            .meaning(
                "Reads the column names from the first line. Off: columns are named C1, C2, ..."),
        text("sortedOn", &ReadCsvParams::sortedOn)
            .label("Sorted on")
            .meaning(
                "Names of the columns that the table is declared sorted on, separated by commas."),
    };
    return table;
}

} // namespace corvanta
