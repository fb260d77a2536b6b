#include "actions/read_parquet/read_parquet_params.h"

#include "actions/shared/reader_params.h"

namespace corvanta {

const ParamTable<ReadParquetParams> &readParquetParamTable()
{
    using P = ReadParquetParams;
    static const ParamTable<P> table{
        shared::fileNamesFromPin<P>(),
        shared::abortIfMissing<P>(),
        flag("int64ToKey", &P::int64ToKey)
            .label("64-bit integers become keys")
            .meaning("64-bit integers become keys of their low 32 bits. Off: they become decimal "
                     "numbers."),
        number("columnSelection", &P::columnSelection)
            .choices(
                {"all columns", "the columns of ColumnsToRead", "the columns named on input pin 1"})
            .label("Columns")
            .meaning("Which columns are read."),
        shared::outputFilenames<P>(),
        flag("extendedEncodings", &P::extendedEncodings)
            .label("Read newer encodings and codecs")
            .meaning("Reads RLE_DICTIONARY, DELTA and BYTE_STREAM_SPLIT pages and the codecs ZSTD, "
                     "LZ4_RAW "
                     "and Brotli too. Off: such files are refused."),
        flag("logicalTypes", &P::logicalTypes)
            .label("Deliver values as what they mean")
            .meaning(
                "Gives dates and times as ISO 8601 text, and decimals, large and unsigned integers "
                "exactly. Off: values as they are stored."),
        flag("pageChecksums", &P::pageChecksums)
            .label("Compare the checksums of pages")
            .meaning("A page that does not have the checksum in its header cannot be read. Off: "
                     "checksums are "
                     "not looked at."),
        flag("skipUnreadable", &P::skipUnreadable)
            .label("Leave out columns that cannot be read")
            .meaning("Leaves out nested columns and others that cannot be read, with a warning. "
                     "Off: such "
                     "files are refused."),
        flag("allowEmpty", &P::allowEmpty)
            .label("A file may be without rows")
            .meaning("A file without rows is an empty table. Off: it is an error."),
        text("fileName", &P::fileName)
            .inputFile()
            .always()
            .label("File")
            .meaning("Parquet file to read, or a pattern such as *.parquet."),
        strings("ColumnsToRead", &P::columnsToRead)
            .label("Columns to read")
            .meaning("Columns that are read when columnSelection is 1."),
    };
    return table;
}

} // namespace corvanta
