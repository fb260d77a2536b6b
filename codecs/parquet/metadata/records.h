// codecs/parquet/records.h
// The metadata records of a Parquet file (parquet.thrift of parquet-format).
//
// Each record lists its fields once, in fields(); reading and writing follow from that. A plain
// member is a required field: it is always written, and a record without it does not read. An
// optional member is written when it is set. Fields that a record does not list are skipped.
// Threads: plain data.
#pragma once
#include "codecs/parquet/metadata/thrift_compact.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::parquet {

// Numbers as they stand in files; a field may hold any other number.
enum Physical : qint32 {
    kBoolean = 0,
    kInt32 = 1,
    kInt64 = 2,
    kInt96 = 3,
    kFloat = 4,
    kDouble = 5,
    kByteArray = 6,
    kFixedLenByteArray = 7,
};
enum Repetition : qint32 { kRequired = 0, kOptional = 1, kRepeated = 2 };
enum CodecNumber : qint32 {
    kUncompressed = 0,
    kSnappy = 1,
    kGzip = 2,
    kLzo = 3,
    kBrotli = 4,
    kLz4Hadoop = 5,
    kZstd = 6,
    kLz4Raw = 7,
};
enum PageType : qint32 { kDataPage = 0, kIndexPage = 1, kDictionaryPage = 2, kDataPageV2 = 3 };
enum Encoding : qint32 {
    kPlain = 0,
    kPlainDictionary = 2,
    kRle = 3,
    kBitPacked = 4,
    kDeltaBinaryPacked = 5,
    kDeltaLengthByteArray = 6,
    kDeltaByteArray = 7,
    kRleDictionary = 8,
    kByteStreamSplit = 9,
};
enum Converted : qint32 {
    kUtf8 = 0,
    kDecimal = 5,
    kDate = 6,
    kTimeMillis = 7,
    kTimeMicros = 8,
    kTimestampMillis = 9,
    kTimestampMicros = 10,
    kUint8 = 11,
    kUint16 = 12,
    kUint32 = 13,
    kUint64 = 14,
};

/// A struct without fields that matter here; its presence is the information.
struct Marker
{
    template <class Self, class F> static void fields(Self &, F &&) {}
};
using IndexPageHeader = Marker;

struct TimeUnit
{
    std::optional<Marker> millis, micros, nanos;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.millis), f(2, r.micros), f(3, r.nanos);
    }
};

struct TimeType
{
    bool isAdjustedToUtc = false;
    TimeUnit unit;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.isAdjustedToUtc), f(2, r.unit);
    }
};

struct DecimalType
{
    qint32 scale = 0, precision = 0;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.scale), f(2, r.precision);
    }
};

struct IntType
{
    qint8 bitWidth = 0;
    bool isSigned = true;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.bitWidth), f(2, r.isSigned);
    }
};

/// What a column means; at most one member is set. Read only when it is asked for.
struct LogicalType
{
    std::optional<DecimalType> decimal;
    std::optional<Marker> date, uuid, float16;
    std::optional<TimeType> time, timestamp;
    std::optional<IntType> integer;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(5, r.decimal), f(6, r.date), f(7, r.time), f(8, r.timestamp), f(10, r.integer),
            f(14, r.uuid), f(15, r.float16);
    }
};

struct SchemaElement
{
    std::optional<qint32> type, typeLength, repetitionType;
    QByteArray name;
    std::optional<qint32> numChildren, convertedType, scale, precision, fieldId;
    std::optional<LogicalType> logicalType;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.type), f(2, r.typeLength), f(3, r.repetitionType), f(4, r.name), f(5, r.numChildren),
            f(6, r.convertedType), f(7, r.scale), f(8, r.precision), f(9, r.fieldId),
            f(10, r.logicalType);
    }
};

/// `max` and `min` are of the order that the oldest readers know (signed); the other two are of the
/// column's own order.
struct Statistics
{
    std::optional<QByteArray> max, min;
    std::optional<qint64> nullCount, distinctCount;
    std::optional<QByteArray> maxValue, minValue;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.max), f(2, r.min), f(3, r.nullCount), f(4, r.distinctCount), f(5, r.maxValue),
            f(6, r.minValue);
    }
};

struct DataPageHeader
{
    qint32 numValues = 0, encoding = 0, definitionLevelEncoding = 0, repetitionLevelEncoding = 0;
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.encoding), f(3, r.definitionLevelEncoding),
            f(4, r.repetitionLevelEncoding), f(5, r.statistics);
    }
};

struct DictionaryPageHeader
{
    qint32 numValues = 0, encoding = 0;
    std::optional<bool> isSorted;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.encoding), f(3, r.isSorted);
    }
};

struct DataPageHeaderV2
{
    qint32 numValues = 0, numNulls = 0, numRows = 0, encoding = 0;
    qint32 definitionLevelsByteLength = 0, repetitionLevelsByteLength = 0;
    std::optional<bool> isCompressed; ///< true when not set
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.numNulls), f(3, r.numRows), f(4, r.encoding),
            f(5, r.definitionLevelsByteLength), f(6, r.repetitionLevelsByteLength),
            f(7, r.isCompressed), f(8, r.statistics);
    }
};

struct PageHeader
{
    qint32 type = 0, uncompressedPageSize = 0, compressedPageSize = 0;
    std::optional<qint32> crc;
    std::optional<DataPageHeader> dataPageHeader;
    std::optional<IndexPageHeader> indexPageHeader;
    std::optional<DictionaryPageHeader> dictionaryPageHeader;
    std::optional<DataPageHeaderV2> dataPageHeaderV2;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.type), f(2, r.uncompressedPageSize), f(3, r.compressedPageSize), f(4, r.crc),
            f(5, r.dataPageHeader), f(6, r.indexPageHeader), f(7, r.dictionaryPageHeader),
            f(8, r.dataPageHeaderV2);
    }
};

/// Field 8, key/value metadata, is skipped.
struct ColumnMetaData
{
    qint32 type = 0;
    std::vector<qint32> encodings;
    std::vector<QByteArray> pathInSchema;
    qint32 codec = 0;
    qint64 numValues = 0, totalUncompressedSize = 0, totalCompressedSize = 0, dataPageOffset = 0;
    std::optional<qint64> indexPageOffset, dictionaryPageOffset;
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.type), f(2, r.encodings), f(3, r.pathInSchema), f(4, r.codec), f(5, r.numValues),
            f(6, r.totalUncompressedSize), f(7, r.totalCompressedSize), f(9, r.dataPageOffset),
            f(10, r.indexPageOffset), f(11, r.dictionaryPageOffset), f(12, r.statistics);
    }
};

struct ColumnChunk
{
    std::optional<QByteArray> filePath;
    qint64 fileOffset = 0;
    std::unique_ptr<ColumnMetaData> metaData;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.filePath), f(2, r.fileOffset), f(3, r.metaData);
    }
};

struct SortingColumn
{
    qint32 columnIdx = 0;
    bool descending = false, nullsFirst = false;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.columnIdx), f(2, r.descending), f(3, r.nullsFirst);
    }
};

struct RowGroup
{
    std::vector<ColumnChunk> columns;
    qint64 totalByteSize = 0, numRows = 0;
    std::optional<std::vector<SortingColumn>> sortingColumns;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.columns), f(2, r.totalByteSize), f(3, r.numRows), f(4, r.sortingColumns);
    }
};

struct KeyValue
{
    QByteArray key;
    std::optional<QByteArray> value;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.key), f(2, r.value);
    }
};

/// The order that a column's minValue and maxValue are of.
struct ColumnOrder
{
    std::optional<Marker> typeDefined;
    template <class Self, class F> static void fields(Self &r, F &&f) { f(1, r.typeDefined); }
};

/// What files of our own say in createdBy.
inline constexpr char kCreatedBy[] = "Corvanta";

struct FileMetaData
{
    qint32 version = 0;
    std::vector<SchemaElement> schema;
    qint64 numRows = 0;
    std::vector<RowGroup> rowGroups;
    std::optional<std::vector<KeyValue>> keyValueMetadata;
    std::optional<QByteArray> createdBy;
    std::optional<std::vector<ColumnOrder>> columnOrders;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.version), f(2, r.schema), f(3, r.numRows), f(4, r.rowGroups),
            f(5, r.keyValueMetadata), f(6, r.createdBy), f(7, r.columnOrders);
    }
};

/// Read a record; the bytes that it takes, or -1 when it is cut off or malformed.
qint64 readRecord(CompactReader &in, FileMetaData &record);
qint64 readRecord(CompactReader &in, PageHeader &record);
/// Write a record; the bytes that it took, or -1.
qint64 writeRecord(CompactWriter &out, const FileMetaData &record);
qint64 writeRecord(CompactWriter &out, const PageHeader &record);

} // namespace corvanta::parquet
