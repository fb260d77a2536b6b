// Data pages of a column without values (parquet-format, README.md, section "Data Pages"):
//
//   version 1   header | length (4), repetition levels | length (4), definition levels | values
//   version 2   header | repetition levels | definition levels | values
//
// Levels are runs of the RLE hybrid: the number of repetitions times 2, as a varint, and the level
// in one byte. A part without levels (maximum level 0) is missing.
#include "codecs/parquet/merge/chunk_pages.h"

#include "base/bytes.h"
#include "base/checked.h"
#include "codecs/parquet/metadata/records.h"

#include <algorithm>

namespace corvanta::parquet {

namespace {

// Ids of fields of PageHeader, DataPageHeader and DataPageHeaderV2.
constexpr qint16 kPageType = 1;
constexpr qint16 kUncompressedSize = 2;
constexpr qint16 kCompressedSize = 3;
constexpr qint16 kCrc = 4;
constexpr qint16 kHeaderV1 = 5;
constexpr qint16 kHeaderV2 = 8;
constexpr qint16 kNumValues = 1;
constexpr qint16 kEncodingV1 = 2;
constexpr qint16 kStatisticsV1 = 5;
constexpr qint16 kNumNullsV2 = 2;
constexpr qint16 kNumRowsV2 = 3;
constexpr qint16 kEncodingV2 = 4;
constexpr qint16 kDefinitionBytesV2 = 5;
constexpr qint16 kRepetitionBytesV2 = 6;
constexpr qint16 kIsCompressedV2 = 7;
constexpr qint16 kStatisticsV2 = 8;

/// One run of equal levels.
QByteArray runOf(qint64 count, char level)
{
    QByteArray run;
    for (quint64 rest = static_cast<quint64>(count) << 1;; rest >>= 7) {
        const bool isLast = rest < 0x80;
        run.append(static_cast<char>(isLast ? rest : (rest & 0x7F) | 0x80));
        if (isLast) {
            break;
        }
    }
    run.append(level);
    return run;
}

/// The levels of a page of version 1: all are 0.
QByteArray zeroLevels(int maxLevel, qint32 count)
{
    if (maxLevel == 0) {
        return {};
    }
    const QByteArray run = runOf(count, '\0');
    QByteArray levels(sizeof(quint32), '\0');
    storeLE(static_cast<quint32>(run.size()), levels.data());
    return levels + run;
}

/// A page of version 1, which every reader knows.
QByteArray nullPage(const MergedLeaf &leaf, qint32 rows)
{
    const QByteArray levels =
        zeroLevels(leaf.maxRepetition, rows) + zeroLevels(leaf.maxDefinition, rows);
    PageHeader header;
    header.type = kDataPage;
    header.uncompressedPageSize = static_cast<qint32>(levels.size());
    header.compressedPageSize = header.uncompressedPageSize;
    header.dataPageHeader.emplace();
    header.dataPageHeader->numValues = rows;
    header.dataPageHeader->encoding = kPlain;
    header.dataPageHeader->definitionLevelEncoding = kRle;
    header.dataPageHeader->repetitionLevelEncoding = kRle;
    CompactWriter out;
    // Only a text above 2 GiB would fail.
    [[maybe_unused]] const auto written = writeRecord(out, header);
    return out.bytes() + levels;
}

/// The details of a page of version 2 for those of version 1.
std::optional<RawStruct> versionTwo(const RawStruct &first)
{
    const auto values = first.number(kNumValues);
    const auto encoding = first.number(kEncodingV1);
    if (!values || !encoding) {
        return std::nullopt;
    }
    RawStruct second;
    second.setI32(kNumValues, static_cast<qint32>(*values));
    second.setI32(kNumNullsV2, 0);
    second.setI32(kNumRowsV2, static_cast<qint32>(*values));
    const bool isOldName = *encoding == kPlainDictionary;
    second.setI32(kEncodingV2, isOldName ? kRleDictionary : static_cast<qint32>(*encoding));
    second.setI32(kRepetitionBytesV2, 0);
    second.setBool(kIsCompressedV2, true);
    if (const auto statistics = first.record(kStatisticsV1)) {
        second.setRecord(kStatisticsV2, *statistics);
    }
    return second;
}

/// The details of a data page, as version 2; nothing if they are damaged.
std::optional<RawStruct> detailsOf(const RawStruct &header, qint64 type)
{
    if (type == kDataPage) {
        const auto details = header.record(kHeaderV1);
        return details ? versionTwo(*details) : std::nullopt;
    }
    return header.record(kHeaderV2);
}

/// Add to a size in the header; false if it does not fit.
bool addTo(RawStruct *header, qint16 id, qint64 added)
{
    // A number of the file may have 64 bits.
    const auto claimed = narrow<qint32>(header->number(id).value_or(0));
    const auto sum = claimed ? narrow<qint32>(*claimed + added) : std::nullopt;
    if (sum) {
        header->setI32(id, *sum);
    }
    return sum.has_value();
}

} // namespace

/// The format limits a page to 2^31 values; a row group with more rows has several pages.
NullChunk makeNullChunk(const MergedLeaf &leaf, qint64 rows, qint64 begin)
{
    constexpr qint64 kMaxPageRows = qint64(1) << 30;
    NullChunk chunk;
    for (qint64 left = rows; left > 0; left -= kMaxPageRows) {
        chunk.pages += nullPage(leaf, static_cast<qint32>(std::min(left, kMaxPageRows)));
    }
    RawStruct statistics;
    statistics.setI64(3, rows); // null_count
    constexpr qint32 kEncodings[] = {kPlain, kRle};
    RawStruct &meta = chunk.metaData;
    meta.setI32(1, leaf.physical);
    meta.setEncodedList(2, encodedNumbers(kEncodings));
    meta.setEncodedList(3, leaf.path);
    meta.setI32(4, kUncompressed);
    meta.setI64(5, rows);
    meta.setI64(6, chunk.pages.size());
    meta.setI64(7, chunk.pages.size());
    meta.setI64(9, begin);
    meta.setRecord(12, statistics);
    return chunk;
}

std::optional<PageStart> withLevels(RawStruct header)
{
    const auto type = header.number(kPageType);
    const auto size = header.number(kCompressedSize);
    if (!type || !size || *size < 0) {
        return std::nullopt;
    }
    PageStart start{{}, *size, static_cast<qint32>(*type)};
    if (*type != kDataPage && *type != kDataPageV2) {
        start.bytes = header.bytes();
        return start;
    }
    auto details = detailsOf(header, *type);
    const auto values = details ? details->number(kNumValues) : std::nullopt;
    if (!values || *values < 0 || details->number(kDefinitionBytesV2).value_or(0) != 0 ||
        details->number(kRepetitionBytesV2).value_or(0) != 0) {
        return std::nullopt;
    }
    const QByteArray levels = runOf(*values, '\1');
    details->setI32(kDefinitionBytesV2, static_cast<qint32>(levels.size()));
    if (!addTo(&header, kUncompressedSize, levels.size()) ||
        !addTo(&header, kCompressedSize, levels.size())) {
        return std::nullopt;
    }
    header.setI32(kPageType, kDataPageV2);
    header.remove(kCrc); // it would have to be computed again
    header.remove(kHeaderV1);
    header.setRecord(kHeaderV2, *details);
    start.bytes = header.bytes() + levels;
    return start;
}

} // namespace corvanta::parquet
