#include "actions/write_csv/write_csv.h"

namespace corvanta {

const ParamTable<WriteCsvParams> &ActionWriteCsv::paramTable()
{
    static const ParamTable<WriteCsvParams> table{
        text("fileName", &WriteCsvParams::fileName)
            .outputFile()
            .required()
            .always()
            .label("File")
            .meaning("Text file to write, UTF-8 with LF line ends."),
        text("separator", &WriteCsvParams::separator)
            .label("Separator")
            .meaning("One ASCII character between two fields."),
        flag("header", &WriteCsvParams::header)
            .label("Write the column names in the first line")
            .meaning("Without it the file contains only rows."),
    };
    return table;
}

} // namespace corvanta
