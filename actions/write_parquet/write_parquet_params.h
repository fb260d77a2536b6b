// The parameters of writeParquet.
#pragma once
#include "actions/shared/row_writer.h"
#include "corvanta/param_table.h"

namespace corvanta {

/// Physical type of key columns.
enum class KeyStorage { Unsigned32, Signed32, Signed64 };

/// How a table is split into files.
enum class SplitMode { None, ByValue, BySize };

/// Codec of pages.
enum class PageCodec { Snappy, None, Gzip, Zstandard, Lz4, Brotli };

struct WriteParquetParams : RowWriterParams
{
    int pageSize = 64;
    int rowGroupSize = 50;
    KeyStorage keyStorage = KeyStorage::Signed64;
    SplitMode split = SplitMode::None;
    double segmentSize = 100;
    PageCodec codec = PageCodec::Snappy;
    bool dictionaryPages = false;
    bool statistics = false;
    QString splitVar;
    QString file;
};

const ParamTable<WriteParquetParams> &writeParquetParamTable();

} // namespace corvanta
