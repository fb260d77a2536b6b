// The file (parquet-format, README.md, section "File format"):
//
//   "PAR1"
//   row groups, each with one chunk per column:
//     dictionary page, if a page of the chunk uses a dictionary
//     data pages of version 1
//   FileMetaData, a Thrift compact record
//   u32 length of FileMetaData, little-endian
//   "PAR1"
//
// A page is a PageHeader (Thrift compact) and the compressed bytes; see column_writer.cpp.
#include "codecs/parquet/write/file_writer.h"

#include "base/bytes.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

qint32 physicalOf(Storage storage)
{
    switch (storage) {
    case Storage::Double:
        return kDouble;
    case Storage::KeyAsUint32:
    case Storage::KeyAsInt32:
    case Storage::Date:
        return kInt32;
    case Storage::KeyAsInt64:
    case Storage::Integer:
    case Storage::Timestamp:
    case Storage::Time:
        return kInt64;
    case Storage::Boolean:
        return kBoolean;
    case Storage::Text:
        break;
    }
    return kByteArray;
}

TimeType microseconds(bool isUtc)
{
    return {isUtc, {{}, Marker{}, {}}};
}

/// The newer annotation; nothing where the older one says all. The older annotations of times mean
/// UTC.
std::optional<LogicalType> logicalTypeOf(const ColumnWriter &column)
{
    LogicalType logical;
    switch (column.column().storage) {
    case Storage::Integer:
        logical.integer = IntType{64, true};
        break;
    case Storage::Date:
        logical.date = Marker{};
        break;
    case Storage::Timestamp:
        logical.timestamp = microseconds(column.isUtc());
        break;
    case Storage::Time:
        logical.time = microseconds(false);
        break;
    default:
        return std::nullopt;
    }
    return logical;
}

/// The older annotation; nothing where it has no number for the type.
std::optional<qint32> convertedTypeOf(const ColumnWriter &column)
{
    switch (column.column().storage) {
    case Storage::Text:
        return kUtf8;
    case Storage::KeyAsUint32:
        return kUint32;
    case Storage::Integer:
        return kSigned64;
    case Storage::Date:
        return kDate;
    case Storage::Timestamp:
        return column.isUtc() ? std::optional<qint32>(kTimestampMicros) : std::nullopt;
    default:
        return std::nullopt;
    }
}

/// A flat schema: the root, then one optional leaf per column, in the order of the columns.
std::vector<SchemaElement> schemaOf(const std::vector<ColumnWriter> &columns)
{
    std::vector<SchemaElement> schema(1);
    // The name of the root has no meaning; many writers use this one.
    schema[0].name = "schema";
    schema[0].numChildren = static_cast<qint32>(columns.size());
    for (const ColumnWriter &column : columns) {
        SchemaElement &element = schema.emplace_back();
        element.type = physicalOf(column.column().storage);
        element.repetitionType = kOptional;
        element.name = column.column().name;
        element.convertedType = convertedTypeOf(column);
        element.logicalType = logicalTypeOf(column);
    }
    return schema;
}

/// A zero bound with the given sign. A reader may search for 0.0 or -0.0, which compare equal, so
/// that the smallest value must be -0.0 and the largest 0.0.
QByteArray widened(QByteArray value, Storage storage, double zero)
{
    if (storage == Storage::Double && loadLE<double>(value.constData()) == 0) {
        storeLE(zero, value.data());
    }
    return value;
}

/// A zero may be stored with either sign: as a minimum it is -0, as a maximum +0.
std::unique_ptr<Statistics> statisticsOf(const ValueRange &range, Storage storage)
{
    auto statistics = std::make_unique<Statistics>();
    statistics->nullCount = range.nulls;
    if (range.isKnown && range.smallest) {
        statistics->minValue = widened(*range.smallest, storage, -0.0);
        statistics->maxValue = widened(*range.largest, storage, 0.0);
    }
    return statistics;
}

} // namespace

FileWriter::FileWriter(ByteSink &sink, const std::vector<WriterColumn> &columns,
                       const WriteOptions &options, PageCompressor &compressor)
    : m_sink(sink)
    , m_compressor(compressor)
    , m_options(options)
    , m_threshold(std::max(options.rowGroupMiB * 1048576,
                           static_cast<qint64>(columns.size()) * options.pageSizeKiB * 1024))
    , m_seenPages(columns.size(), 0)
{
    m_metaData.version = 1;
    m_metaData.createdBy = kCreatedBy;
    if (options.statistics) {
        // Without it, readers ignore minValue and maxValue.
        m_metaData.columnOrders.emplace();
        for (size_t i = 0; i < columns.size(); ++i) {
            m_metaData.columnOrders->push_back({Marker{}});
        }
    }
    m_columns.reserve(columns.size());
    for (const WriterColumn &column : columns) {
        m_columns.emplace_back(column, options, compressor);
    }
}

// Readers find pages by their offsets, so every byte that is written is counted.
Result<void, Error> FileWriter::put(const void *bytes, qint64 n)
{
    if (!m_sink.write(bytes, n)) {
        return Fault{Error::WriteFailed, QString(), m_position};
    }
    m_position += n;
    return {};
}

// The same four bytes end the file, after the metadata.
Result<void, Error> FileWriter::begin()
{
    return put("PAR1", 4);
}

Result<void, Error> FileWriter::addRow(const uchar *const *cells)
{
    for (size_t i = 0; i < m_columns.size(); ++i) {
        ColumnWriter &column = m_columns[i];
        const auto added = column.add(cells[column.column().cell]);
        if (added != ColumnWriter::Added::Yes) {
            const bool isTooLong = added == ColumnWriter::Added::TextTooLong;
            return Fault{isTooLong ? Error::TextTooLong : Error::WrongValue,
                         QString::fromUtf8(column.column().name), static_cast<qint64>(i)};
        }
    }
    ++m_groupRows;
    addFinishedPages();
    return isGroupFull() ? flushGroup() : Result<void, Error>();
}

/// Count the pages that the columns have finished since the last call.
void FileWriter::addFinishedPages()
{
    for (size_t i = 0; i < m_columns.size(); ++i) {
        const std::vector<FinishedPage> &pages = m_columns[i].pages();
        for (size_t &seen = m_seenPages[i]; seen < pages.size(); ++seen) {
            m_open.push_back(pages[seen].bytes);
            m_openBytes += static_cast<qint64>(pages[seen].bytes->maxBytes);
        }
    }
}

/// Replace the maximum size of the first open page, which is done, with its real size.
void FileWriter::addFirstSize()
{
    const PendingPage &page = *m_open.front();
    m_openBytes -= static_cast<qint64>(page.maxBytes);
    m_knownBytes += static_cast<qint64>(page.compressed.size());
    m_open.pop_front();
}

// Never waits: stops at the first page that a worker still compresses.
void FileWriter::addSizesOfDonePages()
{
    while (!m_open.empty() && m_open.front()->isDone.load(std::memory_order_acquire)) {
        addFirstSize();
    }
}

// Waits for each page in turn.
void FileWriter::addSizesOfAllPages()
{
    while (!m_open.empty()) {
        m_compressor.wait(*m_open.front());
        addFirstSize();
    }
}

/// Whether the pages exceed the threshold. Waits for sizes only if they decide the result, so that
/// it does not depend on the speed of the threads.
bool FileWriter::isGroupFull()
{
    if (m_knownBytes + m_openBytes <= m_threshold) {
        return false;
    }
    addSizesOfDonePages();
    if (m_knownBytes <= m_threshold && m_knownBytes + m_openBytes > m_threshold) {
        addSizesOfAllPages();
    }
    return m_knownBytes > m_threshold;
}

Result<void, Error> FileWriter::writePage(const FinishedPage &page, PageHeader header,
                                          ColumnMetaData &chunk)
{
    m_compressor.wait(*page.bytes);
    if (page.bytes->hasFailed) {
        return Fault{Error::NoMemory, u"a page could not be compressed"_s};
    }
    // Both sizes are known only now: the page may have been compressed by another thread.
    const std::vector<char> &bytes = page.bytes->compressed;
    header.uncompressedPageSize = page.rawBytes;
    header.compressedPageSize = static_cast<qint32>(bytes.size());
    CompactWriter out;
    const auto headerBytes = writeRecord(out, header);
    if (!headerBytes) {
        return headerBytes.fault();
    }
    chunk.totalUncompressedSize += *headerBytes + page.rawBytes;
    chunk.totalCompressedSize += *headerBytes + static_cast<qint64>(bytes.size());
    if (auto done = put(out.bytes().constData(), *headerBytes); !done) {
        return done;
    }
    return put(bytes.data(), static_cast<qint64>(bytes.size()));
}

/// Write the dictionary page of a chunk, if a page of the chunk uses a dictionary.
Result<void, Error> FileWriter::writeDictionary(ColumnWriter &column, ColumnMetaData &chunk)
{
    const auto dictionary = column.finishDictionary();
    if (!dictionary) {
        return {};
    }
    PageHeader header;
    header.type = kDictionaryPage;
    header.dictionaryPageHeader = {dictionary->values, kPlainDictionary, {}};
    chunk.dictionaryPageOffset = m_position;
    chunk.encodings.push_back(kPlainDictionary);
    return writePage(*dictionary, std::move(header), chunk);
}

Result<void, Error> FileWriter::writeDataPages(const ColumnWriter &column, ColumnMetaData &chunk)
{
    chunk.dataPageOffset = m_position;
    for (const FinishedPage &page : column.pages()) {
        PageHeader header;
        header.type = kDataPage;
        header.dataPageHeader.emplace();
        header.dataPageHeader->numValues = page.values;
        header.dataPageHeader->encoding = page.isDictionary ? kPlainDictionary : kPlain;
        header.dataPageHeader->definitionLevelEncoding = kRle;
        // The record requires it. There are no repetition levels in a column that is not repeated.
        header.dataPageHeader->repetitionLevelEncoding = kBitPacked;
        if (auto done = writePage(page, std::move(header), chunk); !done) {
            return done;
        }
    }
    return {};
}

Result<void, Error> FileWriter::writeChunk(ColumnWriter &column, RowGroup &group)
{
    ColumnChunk &chunk = group.columns.emplace_back();
    chunk.fileOffset = m_position;
    chunk.metaData = std::make_unique<ColumnMetaData>();
    ColumnMetaData &data = *chunk.metaData;
    data.type = physicalOf(column.column().storage);
    data.encodings = {kPlain}; // deliberately without the RLE of the levels
    data.pathInSchema = {column.column().name};
    data.codec = m_compressor.codec();
    data.numValues = m_groupRows;
    if (m_options.statistics) {
        data.statistics = statisticsOf(column.range(), column.column().storage);
    }
    if (auto done = writeDictionary(column, data); !done) {
        return done;
    }
    if (auto done = writeDataPages(column, data); !done) {
        return done;
    }
    group.totalByteSize += data.totalUncompressedSize;
    return {};
}

Result<void, Error> FileWriter::flushGroup()
{
    RowGroup &group = m_metaData.rowGroups.emplace_back();
    group.numRows = m_groupRows;
    // Submit all pages before waiting for the first one.
    for (ColumnWriter &column : m_columns) {
        column.finishPage();
    }
    for (ColumnWriter &column : m_columns) {
        if (auto done = writeChunk(column, group); !done) {
            return done;
        }
        column.startGroup();
    }
    m_metaData.numRows += m_groupRows;
    m_groupRows = 0;
    // All pages are written, and the next group counts from zero.
    m_open.clear();
    m_openBytes = m_knownBytes = 0;
    std::fill(m_seenPages.begin(), m_seenPages.end(), 0);
    return {};
}

Result<void, Error> FileWriter::finish()
{
    if (m_groupRows != 0) {
        if (auto done = flushGroup(); !done) {
            return done;
        }
    }
    // Known only now: whether the timestamps are those of UTC.
    m_metaData.schema = schemaOf(m_columns);
    CompactWriter out;
    const auto length = writeRecord(out, m_metaData);
    if (!length) {
        return length.fault();
    }
    std::array<char, 8> trailer{};
    storeLE(static_cast<quint32>(*length), trailer.data());
    std::copy_n("PAR1", 4, trailer.data() + 4);
    if (auto done = put(out.bytes().constData(), *length); !done) {
        return done;
    }
    return put(trailer.data(), trailer.size());
}

} // namespace corvanta::parquet
