// A merged file (parquet-format, README.md, section "File format"):
//
//   "PAR1"
//   per row group of the parts, in order:
//     column chunks       copied, or made for a column that the part does not have
//     Bloom filters       copied, each after its chunk
//     column indexes      copied
//     offset indexes      with shifted offsets
//   FileMetaData          that of the first part with the row groups of all
//   length (4), "PAR1"
//
// Fields of FileMetaData: 1 version, 2 schema, 3 num_rows, 4 row_groups, 5 key_value_metadata,
// 6 created_by, 7 column_orders, 8 encryption_algorithm.
#include "codecs/parquet/merge/file_merger.h"

#include "base/bytes.h"
#include "base/checked.h"
#include "codecs/parquet/merge/chunk_pages.h"
#include "codecs/parquet/merge/chunk_ranges.h"
#include "codecs/parquet/metadata/footer.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

// Ids of fields of RowGroup, ColumnChunk, ColumnMetaData and OffsetIndex.
constexpr qint16 kGroupBytes = 2;
constexpr qint16 kGroupRows = 3;
constexpr qint16 kGroupSorting = 4;
constexpr qint16 kGroupOffset = 5;
constexpr qint16 kGroupCompressed = 6;
constexpr qint16 kGroupOrdinal = 7;
constexpr qint16 kChunkFile = 1;
constexpr qint16 kChunkOffset = 2;
constexpr qint16 kOffsetIndexAt = 4;
constexpr qint16 kOffsetIndexBytes = 5;
constexpr qint16 kColumnIndexAt = 6;
constexpr qint16 kColumnIndexBytes = 7;
constexpr qint16 kChunkCrypto = 8;
constexpr qint16 kMetaType = 1;
constexpr qint16 kMetaEncodings = 2;
constexpr qint16 kMetaValues = 5;
constexpr qint16 kMetaUncompressed = 6;
constexpr qint16 kMetaStatistics = 12;
constexpr qint16 kMetaEncodingStats = 13;
constexpr qint16 kBloomAt = 14;
constexpr qint16 kBloomBytes = 15;
constexpr qint16 kMetaSizes = 16;

/// A limit for what a damaged number can make a column without values cost.
constexpr qint64 kMaxGroupRows = qint64(1) << 36;
/// The same for the decompressed size of a chunk: the sum of millions of them fits 64 bits.
constexpr qint64 kMaxChunkBytes = qint64(1) << 40;
constexpr size_t kCopyBytes = size_t(1) << 20;
constexpr char kMagic[] = "PAR1";

Fault<MergeError> damaged(const QString &text)
{
    return {MergeError::Damaged, text};
}

Fault<MergeError> damagedChunk(const MergedColumn &column)
{
    return damaged(u"the chunk of column '%1' is damaged"_s.arg(QString::fromUtf8(column.name)));
}

Fault<MergeError> mergeFaultOf(const Fault<Error> &fault)
{
    return {fault.code == Error::NoMemory ? MergeError::NoMemory : MergeError::Unreadable,
            fault.detail, fault.offset};
}

/// Whether a chunk has values for this many rows, null or not. A repeated value makes more of them,
/// and an empty list counts as one. Readers would find that only when they decode the pages.
bool hasPlausibleSizes(const RawStruct &meta, const MergedLeaf &leaf, qint64 rows)
{
    const qint64 values = meta.number(kMetaValues).value_or(-1);
    const qint64 uncompressed = meta.number(kMetaUncompressed).value_or(-1);
    return (leaf.maxRepetition == 0 ? values == rows : values >= rows) && uncompressed >= 0 &&
           uncompressed <= kMaxChunkBytes;
}

void shift(RawStruct *record, qint16 id, qint64 by)
{
    if (const auto offset = record->number(id); offset && *offset > 0) {
        record->setI64(id, *offset + by);
    }
}

/// An OffsetIndex whose pages have moved; empty if it is damaged. `end`: offset of the footer.
QByteArray shiftedIndex(const QByteArray &bytes, qint64 by, qint64 end)
{
    auto index = RawStruct::parse(bytes);
    const auto pages = index ? index->list(1) : std::nullopt;
    if (!pages) {
        return {};
    }
    QByteArray moved;
    for (const QByteArray &page : *pages) {
        auto location = RawStruct::parse(page);
        const qint64 offset = location ? location->number(1).value_or(-1) : -1;
        // The sum with the shift could overflow.
        if (offset < 0 || offset > end) {
            return {};
        }
        location->setI64(1, offset + by);
        moved += location->bytes();
    }
    index->setList(1, static_cast<qint32>(pages->size()), moved);
    return index->bytes();
}

void removeIndexes(RawStruct *chunk)
{
    for (const qint16 id : {kOffsetIndexAt, kOffsetIndexBytes, kColumnIndexAt, kColumnIndexBytes}) {
        chunk->remove(id);
    }
}

/// The older range of texts and bytes has an order that depends on the program that wrote it.
void removeOldRange(RawStruct *meta)
{
    const auto type = meta->number(kMetaType);
    const bool isBytes = type == kInt96 || type == kByteArray || type == kFixedLenByteArray;
    if (auto statistics = meta->record(kMetaStatistics); isBytes && statistics) {
        statistics->remove(1); // max
        statistics->remove(2); // min
        meta->setRecord(kMetaStatistics, *statistics);
    }
}

/// Whether a leaf of the part has another index in the result.
bool isReordered(const std::vector<int> &indexes)
{
    for (size_t i = 0; i < indexes.size(); ++i) {
        if (indexes[i] != static_cast<int>(i)) {
            return true;
        }
    }
    return false;
}

} // namespace

/// A part that is open.
struct FileMerger::Part
{
    ByteSource *source = nullptr;
    RawStruct metaData;
    FileColumns columns;
    qint64 end = 0;                // offset of the footer
    std::vector<int> indexes;      // by column of the result
    bool isReordered = false;      // its columns have other places in the result
    std::vector<PageRange> chunks; // in ascending order of their offsets
};

/// A chunk of a part.
struct FileMerger::SourceChunk
{
    const MergedColumn &column; // of the part
    const MergedLeaf &leaf;     // of the column
    const QByteArray &bytes;    // an encoded ColumnChunk
    bool needsLevels;           // it becomes optional
};

/// A row group of the merged file.
struct FileMerger::Group
{
    qint64 rows = 0;
    qint64 begin = 0;
    std::vector<QByteArray> source; // the chunks of the part
    std::vector<RawStruct> chunks;
    std::vector<qint64> shifts; // by chunk, of its pages
};

Result<FileMerger::Part, MergeError> FileMerger::open(ByteSource &source) const
{
    const auto footer = readFooterBytes(source);
    if (!footer) {
        return mergeFaultOf(footer.fault());
    }
    auto metaData = RawStruct::parse(footer->span());
    if (!metaData) {
        return Fault{MergeError::Damaged, u"the metadata is damaged"_s, footer->begin};
    }
    if (metaData->has(8)) {
        return Fault{MergeError::Unsupported, u"it is encrypted"_s};
    }
    auto columns = FileColumns::of(*metaData);
    if (!columns) {
        return columns.fault();
    }
    return Part{&source, *std::move(metaData), *std::move(columns), footer->begin, {}};
}

/// Only a difference counts: pandas, for example, stores the number of rows.
void FileMerger::noteMetadata(const RawStruct &metaData)
{
    if (metaData.encoded(5) != m_metaData.encoded(5) && m_findings.otherMetadata++ == 0) {
        m_findings.firstOther = m_parts;
    }
}

/// Only what is compared is kept: the row groups of thousands of parts would fill the memory.
Result<void, MergeError> FileMerger::addPart(ByteSource &source)
{
    auto part = open(source);
    if (!part) {
        return part.fault();
    }
    if (auto added = m_join.add(part->columns); !added) {
        return added;
    }
    if (m_parts == 0) {
        m_metaData = part->metaData;
        m_metaData.remove(4);
    } else {
        noteMetadata(part->metaData);
        m_hasOtherCreators =
            m_hasOtherCreators || part->metaData.encoded(6) != m_metaData.encoded(6);
    }
    ++m_parts;
    m_version = std::max(m_version, part->metaData.number(1).value_or(1));
    return {};
}

Result<void, MergeError> FileMerger::begin(ByteSink &sink)
{
    m_buffer.resize(kCopyBytes);
    auto finished = finishColumns();
    return finished ? write(QByteArrayView(kMagic), sink) : finished;
}

Result<void, MergeError> FileMerger::copyBytes(const Part &part, qint64 begin, qint64 size,
                                               ByteSink &sink)
{
    if (!part.source->seek(begin)) {
        return Fault{MergeError::Unreadable, u"a read failed"_s, begin};
    }
    for (qint64 left = size; left > 0;) {
        const qint64 n = std::min(left, static_cast<qint64>(m_buffer.size()));
        if (readFully(*part.source, m_buffer.data(), n) != n) {
            return Fault{MergeError::Unreadable, u"a read failed"_s, begin + size - left};
        }
        if (!sink.write(m_buffer.data(), n)) {
            return Fault{MergeError::WriteFailed};
        }
        left -= n;
    }
    return {};
}

/// The metadata is read again, because addPart() does not keep it.
Result<qint64, MergeError> FileMerger::copyPart(ByteSource &source, ByteSink &sink)
{
    auto part = open(source);
    if (!part) {
        return part.fault();
    }
    auto indexes = m_join.columnsIn(part->columns);
    if (!indexes) {
        return indexes.fault();
    }
    part->indexes = *std::move(indexes);
    part->isReordered = isReordered(part->indexes);
    const auto groups = part->metaData.list(4);
    if (!groups) {
        // A file without rows has an empty list.
        return damaged(u"the metadata is damaged"_s);
    }
    part->chunks = chunkRanges(*groups, part->end);
    if (overlap(part->chunks)) {
        return damaged(u"the column chunks of the metadata overlap"_s);
    }
    const qint64 rowsBefore = m_rows;
    for (const QByteArray &bytes : *groups) {
        const auto group = RawStruct::parse(bytes);
        if (!group) {
            return damaged(u"the metadata is damaged"_s);
        }
        if (const auto copied = copyGroup(*part, *group, sink); !copied) {
            return copied.fault();
        }
    }
    return m_rows - rowsBefore;
}

Result<void, MergeError> FileMerger::copyGroup(const Part &part, const RawStruct &group,
                                               ByteSink &sink)
{
    auto source = group.list(kGroupColumns);
    const qint64 rows = group.number(kGroupRows).value_or(-1);
    if (!source || source->size() != part.columns.leafCount || rows < 0 || rows > kMaxGroupRows) {
        return damaged(u"a row group is damaged"_s);
    }
    if (rows == 0) {
        return {};
    }
    Group merged{rows, sink.position(), *std::move(source), {}, {}};
    for (size_t i = 0; i < part.indexes.size(); ++i) {
        if (auto copied = copyColumn(part, i, &merged, sink); !copied) {
            return copied;
        }
    }
    auto copied = copyIndexes(part, &merged, sink);
    if (copied) {
        addGroup(part, group, merged);
    }
    return copied;
}

/// All chunks of a column of the result.
Result<void, MergeError> FileMerger::copyColumn(const Part &part, size_t column, Group *group,
                                                ByteSink &sink)
{
    const MergedColumn &merged = m_join.columns()[column];
    const int index = part.indexes[column];
    for (size_t leaf = 0; leaf < merged.leaves.size(); ++leaf) {
        Done copied;
        if (index == SchemaJoin::kMissing) {
            copied = addNulls(merged.leaves[leaf], group, sink);
        } else {
            const MergedColumn &own = part.columns.columns[static_cast<size_t>(index)];
            const bool needsLevels =
                merged.repetition() == kOptional && own.repetition() == kRequired;
            copied = copyChunk(
                part, {own, own.leaves[leaf], group->source[own.firstLeaf + leaf], needsLevels},
                group, sink);
        }
        if (!copied) {
            return copied;
        }
    }
    return {};
}

Result<void, MergeError> FileMerger::addNulls(const MergedLeaf &leaf, Group *group, ByteSink &sink)
{
    const NullChunk made = makeNullChunk(leaf, group->rows, sink.position());
    RawStruct chunk;
    chunk.setI64(kChunkOffset, 0);
    chunk.setRecord(kChunkMeta, made.metaData);
    group->shifts.push_back(0);
    group->chunks.push_back(std::move(chunk));
    return write(made.pages, sink);
}

Result<void, MergeError> FileMerger::copyChunk(const Part &part, const SourceChunk &source,
                                               Group *group, ByteSink &sink)
{
    auto chunk = RawStruct::parse(source.bytes);
    auto meta = chunk ? chunk->record(kChunkMeta) : std::nullopt;
    if (chunk && (chunk->has(kChunkCrypto) || chunk->has(kChunkFile))) {
        return Fault{MergeError::Unsupported,
                     (chunk->has(kChunkFile) ? u"the data of column '%1' is in another file"_s
                                             : u"column '%1' is encrypted"_s)
                         .arg(QString::fromUtf8(source.column.name))};
    }
    const auto pages = meta ? pagesOf(*meta, part.end) : std::nullopt;
    if (!pages || !hasPlausibleSizes(*meta, source.leaf, group->rows)) {
        return damagedChunk(source.column);
    }
    const qint64 begin = sink.position();
    group->shifts.push_back(begin - pages->begin);
    // Deprecated, but some readers find the chunk by it.
    chunk->setI64(kChunkOffset, chunk->number(kChunkOffset).value_or(0) > 0 ? begin : 0);
    if (m_hasOtherCreators) {
        removeOldRange(&*meta);
    }
    auto copied =
        source.needsLevels
            ? addLevels(part, source.column, &*meta, sink)
            : copyBytes(part, pages->begin,
                        pages->size + uncountedBytes(*pages, part.chunks, part.end), sink);
    if (!source.needsLevels) {
        for (const qint16 id : {kMetaDataPage, kMetaIndexPage, kMetaDictionary}) {
            shift(&*meta, id, begin - pages->begin);
        }
    } else {
        // Its pages have other sizes now.
        m_findings.pageIndexes += chunk->has(kOffsetIndexAt) ? 1 : 0;
        removeIndexes(&*chunk);
    }
    if (copied) {
        copied = copyBloomFilter(part, &*meta, sink);
    }
    chunk->setRecord(kChunkMeta, *meta);
    group->chunks.push_back(*std::move(chunk));
    return copied;
}

/// Copy the pages of a column that becomes optional, with levels that say that each row has a
/// value.
Result<void, MergeError> FileMerger::addLevels(const Part &part, const MergedColumn &column,
                                               RawStruct *meta, ByteSink &sink)
{
    const PageRange pages = *pagesOf(*meta, part.end);
    const qint64 begin = sink.position();
    qint64 uncompressed = meta->number(kMetaUncompressed).value_or(0);
    qint64 firstData = -1;
    for (qint64 at = pages.begin; at < pages.begin + pages.size;) {
        qint64 headerBytes = 0;
        auto header = readHeader(part, at, pages.begin + pages.size, &headerBytes);
        const auto start = header ? withLevels(*std::move(header)) : std::nullopt;
        const qint64 left = pages.begin + pages.size - at - headerBytes;
        if (!start || start->pageBytes > left) {
            return damagedChunk(column);
        }
        if (firstData < 0 && start->type != kDictionaryPage) {
            firstData = sink.position();
        }
        auto copied = write(start->bytes, sink);
        if (copied) {
            copied = copyBytes(part, at + headerBytes, start->pageBytes, sink);
        }
        if (!copied) {
            return copied;
        }
        uncompressed += start->bytes.size() - headerBytes;
        at += headerBytes + start->pageBytes;
    }
    if (meta->number(kMetaDictionary).value_or(0) > 0) {
        meta->setI64(kMetaDictionary, begin);
    }
    meta->remove(kMetaIndexPage);
    meta->setI64(kMetaDataPage, firstData < 0 ? begin : firstData);
    meta->setI64(kMetaUncompressed, uncompressed);
    meta->setI64(kMetaCompressed, sink.position() - begin);
    std::vector<qint32> encodings = meta->numbers(kMetaEncodings);
    encodings.insert(encodings.end(), {kRle, kRleDictionary});
    meta->setEncodedList(kMetaEncodings, encodedNumbers(encodings));
    meta->remove(kMetaEncodingStats);
    meta->remove(kMetaSizes);
    return {};
}

/// The header of the page at `at`. Its size is known only when it has been read.
std::optional<RawStruct> FileMerger::readHeader(const Part &part, qint64 at, qint64 end,
                                                qint64 *size)
{
    constexpr qint64 kMaxWindow = qint64(16) << 20; // headers hold the range of the page's values
    for (qint64 window = 4096;; window *= 16) {
        QByteArray bytes(static_cast<qsizetype>(std::min(window, end - at)), '\0');
        if (!part.source->seek(at) ||
            readFully(*part.source, bytes.data(), bytes.size()) != bytes.size()) {
            return std::nullopt;
        }
        auto header = RawStruct::parse(
            {reinterpret_cast<const uchar *>(bytes.constData()), static_cast<size_t>(bytes.size())},
            size);
        if (header || bytes.size() == end - at || window >= kMaxWindow) {
            return header;
        }
    }
}

/// Without its size the filter is left out: it is only an index.
Result<void, MergeError> FileMerger::copyBloomFilter(const Part &part, RawStruct *meta,
                                                     ByteSink &sink)
{
    if (!meta->has(kBloomAt)) {
        return {};
    }
    const auto range = claimedRange(*meta, kBloomAt, kBloomBytes, part.end);
    if (!range) {
        ++m_findings.bloomFilters;
        meta->remove(kBloomAt);
        meta->remove(kBloomBytes);
        return {};
    }
    meta->setI64(kBloomAt, sink.position());
    return copyBytes(part, range->begin, range->size, sink);
}

/// Copy the page indexes of the chunks of a group. A damaged index is left out.
Result<void, MergeError> FileMerger::copyIndexes(const Part &part, Group *group, ByteSink &sink)
{
    for (size_t i = 0; i < group->chunks.size(); ++i) {
        RawStruct &chunk = group->chunks[i];
        if (!chunk.has(kOffsetIndexAt) && !chunk.has(kColumnIndexAt)) {
            continue;
        }
        const auto pages = claimedRange(chunk, kOffsetIndexAt, kOffsetIndexBytes, part.end);
        const QByteArray index = pages ? shiftedIndex(readBytes(part, pages->begin, pages->size),
                                                      group->shifts[i], part.end)
                                       : QByteArray();
        const auto values = claimedRange(chunk, kColumnIndexAt, kColumnIndexBytes, part.end);
        if (index.isEmpty() || (!values && chunk.has(kColumnIndexAt))) {
            ++m_findings.pageIndexes;
            removeIndexes(&chunk);
            continue;
        }
        if (values) {
            chunk.setI64(kColumnIndexAt, sink.position());
            if (auto copied = copyBytes(part, values->begin, values->size, sink); !copied) {
                return copied;
            }
        }
        chunk.setI64(kOffsetIndexAt, sink.position());
        chunk.setI32(kOffsetIndexBytes, static_cast<qint32>(index.size()));
        if (auto written = write(index, sink); !written) {
            return written;
        }
    }
    return {};
}

/// Empty if the bytes cannot be read.
QByteArray FileMerger::readBytes(const Part &part, qint64 begin, qint64 size)
{
    QByteArray bytes(static_cast<qsizetype>(size), '\0');
    const bool isRead =
        part.source->seek(begin) && readFully(*part.source, bytes.data(), size) == size;
    return isRead ? bytes : QByteArray();
}

/// The sizes include chunks that were made or changed.
void FileMerger::addGroup(const Part &part, RawStruct raw, const Group &group)
{
    std::vector<QByteArray> chunks;
    chunks.reserve(group.chunks.size());
    qint64 uncompressed = 0;
    qint64 compressed = 0;
    for (const RawStruct &chunk : group.chunks) {
        const RawStruct meta = *chunk.record(kChunkMeta);
        uncompressed += meta.number(kMetaUncompressed).value_or(0);
        compressed += meta.number(kMetaCompressed).value_or(0);
        chunks.push_back(chunk.bytes());
    }
    raw.setList(kGroupColumns, chunks);
    raw.setI64(kGroupBytes, uncompressed);
    if (raw.has(kGroupOffset)) {
        raw.setI64(kGroupOffset, group.begin);
    }
    if (raw.has(kGroupCompressed)) {
        raw.setI64(kGroupCompressed, compressed);
    }
    if (part.isReordered) {
        raw.remove(kGroupSorting); // it has indexes of columns
    }
    if (raw.has(kGroupOrdinal) && m_groupCount <= std::numeric_limits<qint16>::max()) {
        raw.setI16(kGroupOrdinal, static_cast<qint16>(m_groupCount));
    } else {
        raw.remove(kGroupOrdinal);
    }
    m_groups += raw.bytes();
    ++m_groupCount;
    m_rows += group.rows;
}

Result<void, MergeError> FileMerger::finish(ByteSink &sink)
{
    m_metaData.setI32(1, static_cast<qint32>(m_version));
    m_metaData.setList(2, m_join.schema());
    m_metaData.setI64(3, m_rows);
    m_metaData.setList(4, m_groupCount, m_groups);
    if (m_hasOtherCreators) {
        // Readers correct the values of some programs, which must not happen to those of others.
        m_metaData.setText(6, "Corvanta merge");
    }
    const std::vector<QByteArray> orders = m_join.orders();
    if (orders.empty()) {
        m_metaData.remove(7);
    } else {
        m_metaData.setList(7, orders);
    }
    QByteArray footer = m_metaData.bytes();
    const auto size = narrow<quint32>(footer.size());
    if (!size) {
        return Fault{MergeError::TooLarge,
                     u"the metadata of all parts exceeds the 4 GiB that the format allows"_s};
    }
    std::array<char, sizeof(quint32)> length{};
    storeLE(*size, length.data());
    footer.append(length.data(), sizeof(quint32));
    footer += kMagic;
    return write(footer, sink);
}

} // namespace corvanta::parquet
