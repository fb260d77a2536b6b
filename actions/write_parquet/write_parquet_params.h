// The parameters of writeParquet.
#pragma once
#include "actions/shared/row_writer.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Physical type of key columns. Unsigned32 is INT32 with an annotation; Signed32 stores keys from
/// 2^31 as negative numbers.
enum class KeyStorage { Unsigned32, Signed32, Signed64 };

/// How a table is split into files. A value's file is also closed when a segment is full.
enum class SplitMode { None, ByValue, BySize };

/// Codec of pages; `kCodecs` in write_parquet.cpp is in the same order.
enum class PageCodec { Snappy, None, Gzip, Zstandard, Lz4, Brotli };

// Names of parameters, for messages about them.
inline constexpr char kToInteger[] = "ToInteger";

/// Sizes are limited by the ranges of the table; a number outside is read as the nearest bound.
struct WriteParquetParams : RowWriterParams
{
    /// Uncompressed size of a page, in KiB. A text that does not fit a page fails the run.
    int pageSize = 64;
    /// Size of a row group, in MiB.
    int rowGroupSize = 50;
    KeyStorage keyStorage = KeyStorage::Signed64;
    SplitMode split = SplitMode::None;
    /// Bytes written, in MiB, after which a split table continues in another file.
    double segmentSize = 100;
    PageCodec codec = PageCodec::Snappy;
    /// Store repeated values once per row group.
    bool dictionaryPages = false;
    /// Write null counts and bounds per column chunk.
    bool statistics = false;
    /// Store the columns of the lists below as what their values are. Off: the lists are ignored.
    bool logicalTypes = false;
    // Names of columns. A value that is not of the type fails the run; an empty text is missing.
    QStringList toBoolean;
    QStringList toInteger; ///< also columns of numbers
    QStringList toDate;
    QStringList toTimestamp;
    QStringList toTime;
    /// Name of the column whose value selects the file; used with SplitMode::ByValue.
    QString splitVar;
    /// Name of the file, expanded before use; an empty one fails the run.
    QString file;
};

/// Attributes of `writeParquet`, then its child elements.
const ParamTable<WriteParquetParams> &writeParquetParamTable();

} // namespace corvanta
