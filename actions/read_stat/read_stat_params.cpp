#include "actions/read_stat/read_stat_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

namespace {

using P = ReadStatParams;

/// Which files are read, and what labels are used for.
ParamGroup<P> filesAndLabels()
{
    return {
        shared::fileNamesFromPin<P>(),
        flag("outputFilenames", &P::outputFilenames)
            .label("Add a column with the file name")
            .meaning("Adds a last column with the name of the file of each row."),
        flag("columnNamefromLabel", &P::columnNamefromLabel)
            .label("Name the columns after the labels")
            .meaning("Names the columns after the labels of the variables instead of their names."),
        flag("extractLabels", &P::extractLabels)
            .label("Output value labels")
            .meaning("Reads the labels of labelled values instead of the values."),
    };
}

/// How the bytes of a file are read.
ParamGroup<P> decoding()
{
    return {
        // The default, OfEnding, is not in the list: panels show it as "automatic".
        choice(kFileFormat, &P::fileFormat,
               {{StatFormat::Sas, "SAS File (.sas7bdat)"},
                {StatFormat::SpssSav, "SPSS File (.sav)"},
                {StatFormat::SpssPor, "SPSS File (.por)"},
                {StatFormat::Stata, "Stata File (.dta)"}})
            // The panel offers these four; a transport file is usually recognised by its ending.
            .orAnyNumber("4 is a SAS transport file (.xpt), another number goes by the ending of "
                         "the file name")
            .label("Format")
            .meaning(
                "Format of the data set. By default the ending of the file name determines it."),
        number("bufferSize", &P::bufferSize)
            .range(1, 2047)
            .unit("MB")
            .label("Buffer")
            .meaning("Size of the buffer between parser and rows."),
        text(kStatEncoding, &P::encoding)
            .label("Encoding")
            .meaning("Encoding of the texts in the file, for example WINDOWS-1252. UTF-8 uses the "
                     "encoding that the file declares."),
    };
}

/// What a saved graph gets only when it asks for it.
ParamGroup<P> additions()
{
    return {
        flag("formatDates", &P::formatDates)
            .label("Dates as text")
            .meaning("Reads dates, times and date-times as ISO 8601 text, for example 2026-01-31. "
                     "Off: as the numbers that are stored."),
        number("maxRows", &P::maxRows)
            .range(0, 2147483647)
            .lowMeans("all rows")
            .unit("rows")
            .label("Rows to read")
            .meaning("Reads only this number of rows of each file; 0: all."),
        // The default differs from the name in the other readers.
        text("fileNameColumn", &P::fileNameColumn)
            .onlyWhen("outputFilenames", {QStringLiteral("1")})
            .label("Name of the column with the file name")
            .meaning("Name of the column that outputFilenames adds."),
    };
}

} // namespace

const ParamTable<ReadStatParams> &readStatParamTable()
{
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        filesAndLabels(),
        decoding(),
        additions(),
        shared::rowRange<P>("Number of the first row that is read of each file, from 1. The values "
                            "of the rows before it are not read."),
        shared::fileName<P>("Data set to read."),
        // Programs that read one file use the first parameter that names one.
        text("catalogFile", &P::catalogFile)
            .inputFile()
            .onlyWhen("extractLabels", {QStringLiteral("1")})
            .label("Catalogue")
            .meaning("SAS catalogue (.sas7bcat) with the value labels of a SAS data set, for "
                     "extractLabels."),
        strings("ColumnsToRead", &P::columnsToRead)
            .label("Columns to read")
            .meaning("Names of the variables that are read. Empty: all."),
    };
    return table;
}

} // namespace corvanta
