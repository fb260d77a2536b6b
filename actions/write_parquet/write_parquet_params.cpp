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
            .unit("KiB")
            .label("Page size")
            .meaning("Size of uncompressed pages."),
        number("rowGroupSize", &P::rowGroupSize)
            .range(1, 1048576)
            .always()
            .unit("MiB")
            .label("Row group size")
            .meaning("Size of a row group."),
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
                {SplitMode::ByValue, "one file per value of the split column"},
                {SplitMode::BySize, "a new file after every segment"}})
            .always()
            .range(0, 2)
            .label("Split")
            .meaning("Whether the table is written to one file or several."),
        real("segmentSize", &P::segmentSize)
            .onlyWhen("split", {QStringLiteral("2")})
            .unit("MiB")
            .always()
            .label("Segment size")
            .meaning("Size after which a split table continues in a new file."),
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
               {{PageCodec::Snappy, "Snappy", "Fast; all readers know it."},
                {PageCodec::None, "none", "Largest files; no time for compression."},
                {PageCodec::Gzip, "gzip", "Small files, slow; most readers know it."},
                {PageCodec::Zstandard, "Zstandard", "Small files, fast; needs a recent reader."},
                {PageCodec::Lz4, "LZ4", "Fastest; needs a recent reader."},
                {PageCodec::Brotli, "Brotli", "Smallest files, slowest; few readers know it."}})
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
        flag("logicalTypes", &P::logicalTypes)
            .label("Booleans, integers, dates and times")
            .meaning("Stores the columns of the lists ToBoolean, ToInteger, ToDate, ToDateTime and "
                     "ToTime as such. Off: as texts and decimal numbers."),
    };
}

/// A list of columns of one type. `meaning` says what their values are.
Param<P> typedColumns(const char *name, QStringList P::*list, const char *label,
                      const char *meaning)
{
    return strings(name, list)
        .onlyWhen("logicalTypes", {QStringLiteral("1")})
        .label(label)
        .meaning(meaning);
}

/// The columns that logicalTypes is about.
ParamGroup<P> typedColumns()
{
    return {
        typedColumns(shared::kToBoolean, &P::toBoolean, "Boolean columns",
                     "Columns stored as BOOLEAN: true and false in any letter case, or 1 and 0. "
                     "Any other value is an error."),
        typedColumns(kToInteger, &P::toInteger, "Integer columns",
                     "Columns stored as INT64: whole numbers, or texts of them. Any other value is "
                     "an error."),
        typedColumns(
            shared::kToDate, &P::toDate, "Date columns",
            "Text columns stored as DATE, such as 2026-01-31. Any other text is an error."),
        typedColumns(shared::kToDateTime, &P::toTimestamp, "Columns of dates with times",
                     "Text columns stored as TIMESTAMP in microseconds, such as "
                     "2026-01-31T04:30:05.25, all with a final Z or none. Any other text is an "
                     "error."),
        typedColumns(shared::kToTime, &P::toTime, "Columns of times",
                     "Text columns stored as TIME in microseconds, such as 04:30:05. Any other "
                     "text is an error."),
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
        shared::columnsToWrite<P>("ToWrite").required(),
        typedColumns(),
    };
    return table;
}

} // namespace corvanta
