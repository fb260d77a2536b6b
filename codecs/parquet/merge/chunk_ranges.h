// Where the column chunks of a file are, as its metadata claims. Threads: pure functions.
#pragma once
#include "codecs/parquet/merge/raw_struct.h"

#include <optional>
#include <vector>

namespace corvanta::parquet {

// Ids of fields of RowGroup, ColumnChunk and ColumnMetaData (parquet.thrift).
inline constexpr qint16 kGroupColumns = 1;
inline constexpr qint16 kChunkMeta = 3;
inline constexpr qint16 kMetaCompressed = 7;
inline constexpr qint16 kMetaDataPage = 9;
inline constexpr qint16 kMetaIndexPage = 10;
inline constexpr qint16 kMetaDictionary = 11;

/// Bytes of a file.
struct PageRange
{
    qint64 begin = 0; ///< offset
    qint64 size = 0;
};

/// The pages of a chunk, from its ColumnMetaData. Nothing unless they, and all offsets that are
/// set, are between the magic number and `end`, the offset of the footer.
std::optional<PageRange> pagesOf(const RawStruct &meta, qint64 end);

/// The range of two fields of a record. Nothing unless it is inside the file and not empty.
std::optional<PageRange> claimedRange(const RawStruct &record, qint16 offset, qint16 bytes,
                                      qint64 end);

/// The pages of all chunks of these encoded row groups that have some, in ascending order of their
/// offsets.
std::vector<PageRange> chunkRanges(const std::vector<QByteArray> &groups, qint64 end);

/// Whether two of these ranges share bytes. They are in ascending order.
bool overlap(const std::vector<PageRange> &ranges);

/// The bytes after the pages that belong to them: old writers do not count the header of the
/// dictionary page in the size of a chunk, and readers allow for that. `chunks`: all of the file.
qint64 uncountedBytes(const PageRange &pages, const std::vector<PageRange> &chunks, qint64 end);

} // namespace corvanta::parquet
