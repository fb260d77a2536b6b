#include "actions/read_xbf/read_xbf_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

const ParamTable<ReadXbfParams> &readXbfParamTable()
{
    using P = ReadXbfParams;
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        text("fileName", &P::fileName)
            .inputFile()
            .required()
            .label("File")
            .meaning("Table to read, or a pattern such as *.dbf; all tables must have the columns "
                     "of the first."),
        shared::bufferSize<P>(),
        choice("encoding", &P::encoding,
               {{XbfEncoding::Windows1252, "Latin 1 (Windows 1252)"},
                {XbfEncoding::System, "encoding of the system"},
                {XbfEncoding::Utf8, "UTF-8"}})
            .orAnyNumber("keeps the bytes as they are")
            .label("Encoding")
            .meaning("Encoding of character and memo fields. Any other value keeps the bytes as "
                     "they are."),
        flag("useDBT", &P::useDBT)
            .label("Read memo fields")
            .meaning("Reads the texts of memo fields from the memo file in the same folder as the "
                     "table."),
        flag("dbtInRam", &P::dbtInRam)
            .onlyWhen("useDBT", {QStringLiteral("1")})
            .label("load the full Memo/DBT/FPT file in memory for faster processing.")
            .meaning("Loads the whole memo file into memory. Off: it is read through a buffer."),
        flag("level7", &P::level7)
            .label("dBase level 7 or above")
            .meaning(
                "Reads the tables with the longer header of dBase 7 and above. Tables whose field "
                "descriptors are valid in only one of the two forms are read in that form."),
        flag("readAllTypes", &P::readAllTypes)
            .label("Read tables with currency, objects and pictures")
            .meaning("Reads fields of currency (Y) as numbers, uses the null flags and texts of "
                     "varying length of Visual FoxPro, and leaves out objects and pictures (G, P, "
                     "and B outside FoxPro), with a warning. Off: a table with currency, objects "
                     "or pictures is rejected."),
        flag("isoValues", &P::isoValues)
            .label("Dates in ISO form, true and false")
            .meaning("Reads dates as 2026-01-31, dates with times as 2026-01-31T04:30:05, and "
                     "logical values as the texts true and false. Off: 20260131, 20260131 "
                     "04:30:05, and the keys 1 and 0."),
        flag("declaredEncoding", &P::declaredEncoding)
            .onlyWhen("encoding", {QStringLiteral("0")})
            .label("Encoding that the table names")
            .meaning("Reads texts in the encoding that the header of the table or its .cpg file "
                     "names. Off, or if they name none: in that of the parameter encoding."),
        text("types", &P::types)
            .label("Column types")
            .meaning("One letter per column, separated by commas: K (whole number), F (decimal "
                     "number), U (text). Only columns of texts and digits change; those without a "
                     "letter are texts."),
        shared::outputFilenames<P>(),
    };
    return table;
}

} // namespace corvanta
