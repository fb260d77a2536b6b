#include "actions/write_parquet/write_parquet_params.h"

#include "actions/shared/writer_params.h"

namespace corvanta {

const ParamTable<WriteParquetParams> &writeParquetParamTable()
{
    using P = WriteParquetParams;
    static const ParamTable<P> table{
        number("pageSize", &P::pageSize)
            .range(1, 1048576)
            .always()
            .label("Page size")
            .meaning("Size of uncompressed pages, in KiB."),
        number("rowGroupSize", &P::rowGroupSize)
            .range(1, 1048576)
            .always()
            .label("Row group size")
            .meaning("Size of a row group, in MiB."),
        number("keyStorage", &P::keyStorage)
            .range(0, 2)
            .always()
            .choices({"32-bit integer marked as unsigned", "32-bit integer", "64-bit integer"})
            .label("Storage of keys")
            .meaning("Physical type of the columns of whole numbers."),
        shared::writeAllColumns<P>(
            "Writes every column. Off: only the columns of ToWrite, in that order."),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::writeAllRows<P>(),
        number("split", &P::split)
            .always()
            .range(0, 2)
            .choices(
                {"one file", "one file per value of splitVar", "a new file after every segment"})
            .label("Split")
            .meaning("Whether the table goes into one file or several."),
        real("segmentSize", &P::segmentSize)
            .always()
            .label("Segment size")
            .meaning("MiB after which a split table goes on in a new file."),
        text("splitVar", &P::splitVar)
            .always()
            .label("Split column")
            .meaning("Column whose value selects the file. Best when the table is sorted on it."),
        shared::testCol<P>().always(),
        shared::testValue<P>().always(),
        number("codec", &P::codec)
            .range(0, 5)
            .choices({"Snappy", "none", "gzip", "Zstandard", "LZ4", "Brotli"})
            .label("Compression")
            .meaning("Codec of the pages."),
        flag("dictionaryPages", &P::dictionaryPages)
            .label("Dictionary pages")
            .meaning("Stores repeated values once per row group, which makes smaller files."),
        flag("statistics", &P::statistics)
            .label("Statistics")
            .meaning("Writes null counts, smallest and largest values, for readers that skip row "
                     "groups."),
        text("file", &P::file)
            .outputFile()
            .always()
            .label("File")
            .meaning("Parquet file to write."),
        shared::columnsToWrite<P>("ToWrite", &P::toWrite),
    };
    return table;
}

} // namespace corvanta
