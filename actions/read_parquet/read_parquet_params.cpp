#include "actions/read_parquet/read_parquet_params.h"

#include "actions/shared/params/reader_params.h"

namespace corvanta {

namespace {

using P = ReadParquetParams;

/// Which files and columns are read, and the types of columns.
ParamGroup<P> filesAndColumns()
{
    return {
        shared::fileNamesFromPin<P>(),
        shared::abortIfMissing<P>(),
        flag("int64ToKey", &P::int64ToKey)
            .label("64-bit integers become keys")
            .meaning("Reads 64-bit integers as keys, their low 32 bits. Off: as decimal numbers."),
        choice("columnSelection", &P::columnSelection,
               {{ColumnSelection::All, "all columns"},
                {ColumnSelection::Listed, "the columns in the list"},
                {ColumnSelection::FromPin, "the columns named on input pin 1"}})
            .otherwise("reads all columns")
            .label("Columns")
            .meaning("Which columns are read."),
        shared::outputFilenames<P>(),
    };
}

/// Files in newer forms.
ParamGroup<P> newerForms()
{
    return {
        flag("extendedEncodings", &P::extendedEncodings)
            .label("Read newer encodings and codecs")
            .meaning("Also reads RLE_DICTIONARY, DELTA and BYTE_STREAM_SPLIT pages and the codecs "
                     "ZSTD, LZ4_RAW and Brotli. Off: such files are rejected."),
        flag("logicalTypes", &P::logicalTypes)
            .label("Convert values to what they represent")
            .meaning("Reads dates and times as ISO 8601 text, and decimals, large and unsigned "
                     "integers exactly. Off: reads values as they are stored."),
        flag("booleanTexts", &P::booleanTexts)
            .label("Booleans become true and false")
            .meaning("Reads booleans as the texts true and false. Off: as 1 and 0."),
    };
}

/// What is accepted in a file.
ParamGroup<P> tolerance()
{
    return {
        flag("pageChecksums", &P::pageChecksums)
            .label("Check the checksums of pages")
            .meaning("Rejects a page whose checksum differs from the one in its header. Off: "
                     "checksums are ignored."),
        flag("skipUnreadable", &P::skipUnreadable)
            .label("Skip columns that cannot be read")
            .meaning("Skips nested columns and others that cannot be read, with a warning. Off: "
                     "such files are rejected."),
        flag("allowEmpty", &P::allowEmpty)
            .label("Accept files without rows")
            .meaning("Reads a file without rows as an empty table. Off: it is an error."),
    };
}

} // namespace

const ParamTable<ReadParquetParams> &readParquetParamTable()
{
    // The order is that of saved graphs.
    static const ParamTable<P> table{
        filesAndColumns(),
        newerForms(),
        tolerance(),
        shared::rowRange<P>("Number of the first row that is read of each file, from 1. Row groups "
                            "before it are not decoded."),
        shared::fileName<P>("Parquet file to read, or a pattern such as *.parquet.").orOwnText(),
        strings("ColumnsToRead", &P::columnsToRead)
            .requiredWhen("columnSelection", {QStringLiteral("1")})
            .label("Columns to read")
            .meaning("Columns that are read when columnSelection is 1."),
    };
    return table;
}

} // namespace corvanta
