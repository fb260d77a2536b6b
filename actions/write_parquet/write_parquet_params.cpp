#include "actions/write_parquet/write_parquet_params.h"

#include "actions/shared/params/writer_params.h"

// The lines are in the order of saved graphs, which is not an order of subjects.
namespace corvanta {

namespace {

using P = WriteParquetParams;

/// The layout of a file. A page has at most 1 GiB, a row group at most 1 TiB.
ParamGroup<P> storage()
{
    return {
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
        choice("keyStorage", &P::keyStorage,
               {{KeyStorage::Unsigned32, "32-bit integer marked as unsigned"},
                {KeyStorage::Signed32, "32-bit integer"},
                {KeyStorage::Signed64, "64-bit integer"}})
            .range(0, 2)
            .always()
            .label("Storage of keys")
            .meaning("Physical type of the columns of whole numbers."),
    };
}

/// The files that a table is split into.
ParamGroup<P> splitting()
{
    return {
        choice("split", &P::split,
               {{SplitMode::None, "one file"},
                {SplitMode::ByValue, "one file per value of splitVar"},
                {SplitMode::BySize, "a new file after every segment"}})
            .always()
            .range(0, 2)
            .label("Split")
            .meaning("Whether the table is written to one file or several."),
        real("segmentSize", &P::segmentSize)
            .always()
            .label("Segment size")
            .meaning("Size in MiB after which a split table continues in a new file."),
        text("splitVar", &P::splitVar)
            .requiredWhen("split", {QStringLiteral("1")})
            .always()
            .label("Split column")
            .meaning("Column whose value selects the file. Best when the table is sorted on it."),
    };
}

/// What happens to pages. All of it is optional for readers of the file.
ParamGroup<P> encoding()
{
    return {
        choice("codec", &P::codec,
               {{PageCodec::Snappy, "Snappy"},
                {PageCodec::None, "none"},
                {PageCodec::Gzip, "gzip"},
                {PageCodec::Zstandard, "Zstandard"},
                {PageCodec::Lz4, "LZ4"},
                {PageCodec::Brotli, "Brotli"}})
            .range(0, 5)
            .label("Compression")
            .meaning("Codec of the pages."),
        flag("dictionaryPages", &P::dictionaryPages)
            .label("Dictionary pages")
            .meaning("Stores repeated values once per row group, which makes smaller files."),
        flag("statistics", &P::statistics)
            .label("Statistics")
            .meaning("Writes null counts, smallest and largest values, for readers that skip row "
                     "groups."),
    };
}

} // namespace

const ParamTable<WriteParquetParams> &writeParquetParamTable()
{
    static const ParamTable<P> table{
        storage(),
        shared::writeAllColumns<P>(
            "Writes every column. Off: only the columns of ToWrite, in that order."),
        shared::checkNameCollision<P>(),
        shared::createDir<P>(),
        shared::writeAllRows<P>(),
        splitting(),
        // Saved also with their defaults, unlike in the other writers.
        shared::testCol<P>().always(),
        shared::testValue<P>().always(),
        encoding(),
        shared::lockTimeOut<P>(),
        text("file", &P::file)
            .outputFile()
            .required()
            .always()
            .label("File")
            .meaning("Parquet file to write."),
        shared::columnsToWrite<P>("ToWrite").requiredWhen("writeAllColumns", {QStringLiteral("0")}),
    };
    return table;
}

} // namespace corvanta
