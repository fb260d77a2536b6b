// The fields that place a chunk (parquet.thrift, ColumnMetaData); offsets in the file:
//
//   dictionary_page_offset 11, index_page_offset 10      optional; 0 in some writers: none
//   data_page_offset 9                                   the first of the three begins the chunk
//   total_compressed_size 7                              bytes of all its pages, with their headers
#include "codecs/parquet/merge/chunk_ranges.h"

#include <algorithm>

namespace corvanta::parquet {

namespace {

/// These bytes, if they are between the magic number and `end`. Subtractions, because a sum of
/// claims could overflow.
std::optional<PageRange> rangeInFile(qint64 begin, qint64 size, qint64 end)
{
    const bool isInside = begin >= 4 && begin <= end && size >= 0 && size <= end - begin;
    return isInside ? std::optional(PageRange{begin, size}) : std::nullopt;
}

} // namespace

std::optional<PageRange> pagesOf(const RawStruct &meta, qint64 end)
{
    const auto size = meta.number(kMetaCompressed);
    auto begin = meta.number(kMetaDataPage);
    if (!size || !begin) {
        return std::nullopt;
    }
    for (const qint16 id : {kMetaDictionary, kMetaIndexPage}) {
        const qint64 other = meta.number(id).value_or(0);
        if (other > end) {
            // The sum with the shift could overflow.
            return std::nullopt;
        }
        begin = other > 0 ? std::min(*begin, other) : *begin;
    }
    return rangeInFile(*begin, *size, end);
}

std::optional<PageRange> claimedRange(const RawStruct &record, qint16 offset, qint16 bytes,
                                      qint64 end)
{
    const auto begin = record.number(offset);
    const auto size = record.number(bytes);
    return begin && size && *size > 0 ? rangeInFile(*begin, *size, end) : std::nullopt;
}

std::vector<PageRange> chunkRanges(const std::vector<QByteArray> &groups, qint64 end)
{
    std::vector<PageRange> ranges;
    for (const QByteArray &bytes : groups) {
        const auto group = RawStruct::parse(bytes);
        const auto chunks = group ? group->list(kGroupColumns) : std::nullopt;
        for (const QByteArray &chunk : chunks.value_or(std::vector<QByteArray>())) {
            const auto parsed = RawStruct::parse(chunk);
            const auto meta = parsed ? parsed->record(kChunkMeta) : std::nullopt;
            const auto pages = meta ? pagesOf(*meta, end) : std::nullopt;
            if (pages && pages->size > 0) {
                ranges.push_back(*pages);
            }
        }
    }
    std::ranges::sort(ranges, {}, &PageRange::begin);
    return ranges;
}

/// The merged file would be larger than all parts, or much larger: each byte would be copied for
/// each chunk that claims it.
bool overlap(const std::vector<PageRange> &ranges)
{
    return std::ranges::adjacent_find(ranges, [](const PageRange &a, const PageRange &b) {
               return b.begin - a.begin < a.size;
           }) != ranges.end();
}

/// Up to the next chunk, if that is near.
qint64 uncountedBytes(const PageRange &pages, const std::vector<PageRange> &chunks, qint64 end)
{
    constexpr qint64 kMaxHeader = 100;
    const auto next = std::ranges::upper_bound(chunks, pages.begin, {}, &PageRange::begin);
    const qint64 gap = (next == chunks.end() ? end : next->begin) - pages.begin - pages.size;
    return gap > 0 && gap <= kMaxHeader ? gap : 0;
}

} // namespace corvanta::parquet
