#include "readers/read_stat_params.h"

namespace corvanta {

const ParamTable<ReadStatParams> &readStatParamTable()
{
    using P = ReadStatParams;
    static const ParamTable<P> table{
        flag("fileNameFromPin", &P::fileNameFromPin)
            .label("Take the file names from input pin 0")
            .meaning("From its first column, one file per row."),
        flag("outputFilenames", &P::outputFilenames)
            .label("Add a column with the file name")
            .meaning("The last column, _Filename."),
        flag("columnNamefromLabel", &P::columnNamefromLabel)
            .label("Columns are named after the labels")
            .meaning("Instead of the names of the variables."),
        flag("extractLabels", &P::extractLabels)
            .label("Output value labels")
            .meaning("Instead of labelled values."),
        number("fileFormat", &P::fileFormat)
            .choices({"SAS File (.sas7bdat)", "SPSS File (.sav)", "SPSS File (.por)",
                      "Stata File (.dta)"})
            .label("Format")
            .meaning("Without it the ending of the file name decides."),
        number("bufferSize", &P::bufferSize)
            .range(1, 2047)
            .label("Buffer")
            .meaning("Between parser and rows, in MB."),
        text("encoding", &P::encoding)
            .label("Encoding")
            .meaning("Of the texts in the file, for example UTF-8."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Data set to read."),
    };
    return table;
}

} // namespace corvanta
