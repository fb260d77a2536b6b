// The metadata records of a Parquet file (parquet.thrift of parquet-format).
//
// Each record lists its fields once, in fields(), as pairs of the Thrift field id and the member.
// Reading and writing both use that list. A plain member is a required field: it is always written,
// and a record without it is rejected. An optional member (std::optional or std::unique_ptr) is
// written only if it is set. Unknown fields are skipped.
//
// Member names are those of parquet.thrift. Sizes and offsets are in bytes. The values come from
// the file unchecked: a count may be negative, and an enumeration may hold any number.
// Threads: plain data.
#pragma once
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/metadata/thrift_compact.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <vector>

namespace corvanta::parquet {

// Numbers as stored in files. A field may hold any other number.

/// The stored type of a column's values.
enum Physical : qint32 {
    /// One bit in PLAIN form, least significant bit first.
    kBoolean = 0,
    kInt32 = 1,
    kInt64 = 2,
    /// Deprecated by the format; in use for timestamps: nanoseconds of the day, then Julian day.
    kInt96 = 3,
    kFloat = 4,
    kDouble = 5,
    /// Each value has a length of 4 bytes.
    kByteArray = 6,
    /// All values have SchemaElement::typeLength bytes.
    kFixedLenByteArray = 7,
};
/// Whether a column may have nulls or several values per row.
enum Repetition : qint32 { kRequired = 0, kOptional = 1, kRepeated = 2 };
/// The compression of the pages of a chunk.
enum CodecNumber : qint32 {
    kUncompressed = 0,
    kSnappy = 1,
    kGzip = 2,
    /// Not supported by any Decompressor.
    kLzo = 3,
    kBrotli = 4,
    /// Deprecated by the format: LZ4 with an undocumented frame. Not supported.
    kLz4Hadoop = 5,
    kZstd = 6,
    kLz4Raw = 7,
};
/// What a page holds. Index pages are defined by the format but not in use.
enum PageType : qint32 { kDataPage = 0, kIndexPage = 1, kDictionaryPage = 2, kDataPageV2 = 3 };
/// How the values of a page are encoded.
enum Encoding : qint32 {
    kPlain = 0,
    /// Deprecated name of kPlain in a dictionary page, and of kRleDictionary in a data page.
    kPlainDictionary = 2,
    /// Levels, and booleans in newer files.
    kRle = 3,
    /// Levels in old files only.
    kBitPacked = 4,
    kDeltaBinaryPacked = 5,
    kDeltaLengthByteArray = 6,
    kDeltaByteArray = 7,
    kRleDictionary = 8,
    kByteStreamSplit = 9,
};
/// The older form of a column's annotation ("ConvertedType"). Only the numbers in use; the values
/// are those of the file.
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
    kSigned64 = 18,
};

/// A struct whose fields are not needed. Its presence is the information.
struct Marker
{
    /// Here and in all records below: calls `f(id, member)` for each field, in ascending order of
    /// ids. `Self` is const when the record is written.
    template <class Self, class F> static void fields(Self &, F &&) {}
};
using IndexPageHeader = Marker;

/// The unit of a time or timestamp. Exactly one member is set in a valid file.
struct TimeUnit
{
    std::optional<Marker> millis, micros, nanos;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.millis), f(2, r.micros), f(3, r.nanos);
    }
};

/// A time of day or a timestamp, in units of `unit`.
struct TimeType
{
    bool isAdjustedToUtc = false;
    TimeUnit unit;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.isAdjustedToUtc), f(2, r.unit);
    }
};

/// A decimal number: an integer times 10^-scale.
struct DecimalType
{
    /// `precision` is the number of decimal digits. Unlike `scale` it is not needed to read a
    /// value.
    qint32 scale = 0, precision = 0;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.scale), f(2, r.precision);
    }
};

/// An integer of `bitWidth` bits.
struct IntType
{
    /// 8, 16, 32 or 64. Values of up to 32 bits are stored as INT32.
    qint8 bitWidth = 0;
    bool isSigned = true;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.bitWidth), f(2, r.isSigned);
    }
};

/// The newer form of a column's annotation. At most one member is set. Used only with
/// ReadOptions::logicalTypes.
struct LogicalType
{
    std::optional<DecimalType> decimal;
    /// uuid and float16 annotate kFixedLenByteArray values of 16 and 2 bytes.
    std::optional<Marker> date, uuid, float16;
    std::optional<TimeType> time, timestamp;
    std::optional<IntType> integer;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(5, r.decimal), f(6, r.date), f(7, r.time), f(8, r.timestamp), f(10, r.integer),
            f(14, r.uuid), f(15, r.float16);
    }
};

/// A column or a group of columns. The elements are the schema tree in depth-first order: an
/// element with numChildren is followed by its children. Element 0 is the root.
struct SchemaElement
{
    /// A Physical, set only for leaves; the bytes of a kFixedLenByteArray value; a Repetition, not
    /// set for the root.
    std::optional<qint32> type, typeLength, repetitionType;
    /// UTF-8.
    QByteArray name;
    /// numChildren is set only for groups; convertedType is a Converted; scale and precision belong
    /// to kDecimal; fieldId is not used.
    std::optional<qint32> numChildren, convertedType, scale, precision, fieldId;
    /// Replaces convertedType in newer files. Writers usually set both.
    std::optional<LogicalType> logicalType;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.type), f(2, r.typeLength), f(3, r.repetitionType), f(4, r.name), f(5, r.numChildren),
            f(6, r.convertedType), f(7, r.scale), f(8, r.precision), f(9, r.fieldId),
            f(10, r.logicalType);
    }
};

/// The range and the null count of a chunk or page. `max` and `min` use the signed order of the
/// oldest readers; `maxValue` and `minValue` use the column's own order. Values are in PLAIN form
/// without a length.
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

/// Details of a data page of version 1. numValues includes nulls.
struct DataPageHeader
{
    /// The three encodings are Encoding numbers.
    qint32 numValues = 0, encoding = 0, definitionLevelEncoding = 0, repetitionLevelEncoding = 0;
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.encoding), f(3, r.definitionLevelEncoding),
            f(4, r.repetitionLevelEncoding), f(5, r.statistics);
    }
};

/// Details of a dictionary page. numValues is the number of entries.
struct DictionaryPageHeader
{
    /// `encoding` is kPlain or kPlainDictionary; both mean PLAIN values.
    qint32 numValues = 0, encoding = 0;
    /// Whether the entries are in ascending order.
    std::optional<bool> isSorted;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.encoding), f(3, r.isSorted);
    }
};

/// Details of a data page of version 2. numValues includes nulls. The levels are before the values
/// and never compressed.
struct DataPageHeaderV2
{
    /// numRows differs from numValues only in repeated columns.
    qint32 numValues = 0, numNulls = 0, numRows = 0, encoding = 0;
    /// Sizes of the levels, which are part of both page sizes in PageHeader. The repetition levels
    /// come first.
    qint32 definitionLevelsByteLength = 0, repetitionLevelsByteLength = 0;
    /// Whether the values are compressed. True if not set.
    std::optional<bool> isCompressed;
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.numValues), f(2, r.numNulls), f(3, r.numRows), f(4, r.encoding),
            f(5, r.definitionLevelsByteLength), f(6, r.repetitionLevelsByteLength),
            f(7, r.isCompressed), f(8, r.statistics);
    }
};

/// The record before the bytes of each page. The member that belongs to `type` is set in a valid
/// file. `crc` is the CRC-32 of the stored bytes.
struct PageHeader
{
    /// `type` is a PageType. The sizes are those of the page without this record.
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

/// Where the pages of a column chunk are, and how they are encoded. numValues includes nulls. Field
/// 8, key/value metadata, is skipped.
struct ColumnMetaData
{
    /// A Physical. Must be that of the column's SchemaElement.
    qint32 type = 0;
    /// All encodings in use, for readers that want to reject a chunk early. Not needed for reading.
    std::vector<qint32> encodings;
    /// Names from the root's child to the leaf, in UTF-8.
    std::vector<QByteArray> pathInSchema;
    /// A CodecNumber. Applies to all pages of the chunk.
    qint32 codec = 0;
    /// The sizes include the page headers. dataPageOffset is that of the first data page.
    qint64 numValues = 0, totalUncompressedSize = 0, totalCompressedSize = 0, dataPageOffset = 0;
    /// Some writers set dictionaryPageOffset to 0 in place of leaving it out.
    std::optional<qint64> indexPageOffset, dictionaryPageOffset;
    std::unique_ptr<Statistics> statistics;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.type), f(2, r.encodings), f(3, r.pathInSchema), f(4, r.codec), f(5, r.numValues),
            f(6, r.totalUncompressedSize), f(7, r.totalCompressedSize), f(9, r.dataPageOffset),
            f(10, r.indexPageOffset), f(11, r.dictionaryPageOffset), f(12, r.statistics);
    }
};

/// The part of a column in one row group. `filePath` names another file if set.
struct ColumnChunk
{
    /// The reader rejects chunks in other files.
    std::optional<QByteArray> filePath;
    /// Not reliable: writers store different things here. ColumnMetaData has the real offsets.
    qint64 fileOffset = 0;
    /// Not set in encrypted files.
    std::unique_ptr<ColumnMetaData> metaData;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.filePath), f(2, r.fileOffset), f(3, r.metaData);
    }
};

/// One column of the order of a row group; columnIdx is 0-based.
struct SortingColumn
{
    qint32 columnIdx = 0;
    bool descending = false, nullsFirst = false;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.columnIdx), f(2, r.descending), f(3, r.nullsFirst);
    }
};

/// A group of rows: one chunk for each leaf of the schema, in schema order.
struct RowGroup
{
    std::vector<ColumnChunk> columns;
    /// totalByteSize is the uncompressed size of all chunks.
    qint64 totalByteSize = 0, numRows = 0;
    std::optional<std::vector<SortingColumn>> sortingColumns;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.columns), f(2, r.totalByteSize), f(3, r.numRows), f(4, r.sortingColumns);
    }
};

/// An entry of the metadata that applications add.
struct KeyValue
{
    /// UTF-8, as is `value`.
    QByteArray key;
    std::optional<QByteArray> value;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.key), f(2, r.value);
    }
};

/// The order of a column's minValue and maxValue. Readers ignore the two if it is not set.
struct ColumnOrder
{
    /// The only order that the format defines: that of the column's type.
    std::optional<Marker> typeDefined;
    template <class Self, class F> static void fields(Self &r, F &&f) { f(1, r.typeDefined); }
};

/// The value of createdBy in the files that FileWriter writes.
inline constexpr char kCreatedBy[] = "Corvanta";

/// The record at the end of the file.
struct FileMetaData
{
    /// Version of the format: 1 or 2. Readers need not check it.
    qint32 version = 0;
    /// The schema tree; see SchemaElement.
    std::vector<SchemaElement> schema;
    /// Total of all row groups.
    qint64 numRows = 0;
    std::vector<RowGroup> rowGroups;
    std::optional<std::vector<KeyValue>> keyValueMetadata;
    /// Name and version of the program that wrote the file.
    std::optional<QByteArray> createdBy;
    /// One per leaf of the schema.
    std::optional<std::vector<ColumnOrder>> columnOrders;
    template <class Self, class F> static void fields(Self &r, F &&f)
    {
        f(1, r.version), f(2, r.schema), f(3, r.numRows), f(4, r.rowGroups),
            f(5, r.keyValueMetadata), f(6, r.createdBy), f(7, r.columnOrders);
    }
};

/// Read a record. Returns its size in bytes. Errors: BadThrift, without a detail, if the record is
/// truncated or malformed, or a required field is missing; `record` is then partly filled. Members
/// that the bytes do not contain keep their values: pass a new record.
Result<qint64, Error> readRecord(CompactReader &in, FileMetaData &record);
Result<qint64, Error> readRecord(CompactReader &in, PageHeader &record);
/// Append a record. Returns its size in bytes. Errors: TextTooLong for a string above 2 GiB.
Result<qint64, Error> writeRecord(CompactWriter &out, const FileMetaData &record);
Result<qint64, Error> writeRecord(CompactWriter &out, const PageHeader &record);

} // namespace corvanta::parquet
