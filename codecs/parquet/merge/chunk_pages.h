// Pages that a merge makes or changes: all others are copied with their chunk.
//
// Both are as small as possible: a run of equal levels needs some bytes. Threads: pure functions.
#pragma once
#include "codecs/parquet/merge/raw_struct.h"
#include "codecs/parquet/merge/schema_join.h"

namespace corvanta::parquet {

/// A column chunk in memory.
struct NullChunk
{
    QByteArray pages;
    RawStruct metaData; ///< a ColumnMetaData; its offset is that of the chunk, `begin`
};

/// A chunk in which `rows` rows are null, or empty lists. The column is optional or repeated.
NullChunk makeNullChunk(const MergedLeaf &leaf, qint64 rows, qint64 begin);

/// What a page begins with in the merged file.
struct PageStart
{
    QByteArray bytes;     ///< the header, and levels before the bytes of the page
    qint64 pageBytes = 0; ///< of the page after its header in the source file
    qint32 type = 0;      ///< a PageType
};

/// The start of a page of a column without levels that becomes optional. A data page of version 1
/// becomes one of version 2: its levels are not compressed, so that the values need not be either.
/// Nothing if the header is damaged.
std::optional<PageStart> withLevels(RawStruct header);

} // namespace corvanta::parquet
