// A data page of version 1 before compression (parquet-format, README.md and Encodings.md). Numbers
// are little-endian:
//
//   bytes   content
//        4  length of the levels in bytes, unsigned
//   length  definition levels: RLE hybrid, one bit per row, 1 if the value is not null
//           the values that are not null:
//             PLAIN       fixed width: the value; text: u32 length in bytes, UTF-8;
//                         boolean: one bit, the first value in the lowest bit of the first byte
//             dictionary  1 byte bit width, then the RLE hybrid of the indexes
//
// A dictionary page has the distinct values in PLAIN form.
#include "codecs/parquet/write/column_writer.h"

#include "base/bytes.h"
#include "base/utf.h"
#include "codecs/parquet/encoding/rle_hybrid.h"
#include "codecs/parquet/write/typed_value.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>

namespace corvanta::parquet {

namespace {

constexpr size_t kSizeBytes = 4;
/// Maximum size in bytes of a text in statistics. A truncated text would need to be rounded up to
/// remain a valid upper bound.
constexpr size_t kMaxRangeBytes = 64;

/// Bytes of a stored value in m_values; 0 for texts. Booleans are packed when their page is full.
size_t valueBytes(Storage storage)
{
    switch (storage) {
    case Storage::Boolean:
        return 1;
    case Storage::KeyAsUint32:
    case Storage::KeyAsInt32:
    case Storage::Date:
        return 4;
    case Storage::Double:
    case Storage::KeyAsInt64:
    case Storage::Integer:
    case Storage::Timestamp:
    case Storage::Time:
        return 8;
    case Storage::Text:
        break;
    }
    return 0;
}

/// Whether value `a` is less than value `b` in the order of the column.
inline bool isBefore(Storage storage, std::string_view a, std::string_view b)
{
    switch (storage) {
    case Storage::Double:
        return loadLE<double>(a.data()) < loadLE<double>(b.data());
    case Storage::KeyAsUint32:
        return loadLE<quint32>(a.data()) < loadLE<quint32>(b.data());
    case Storage::KeyAsInt32:
    case Storage::Date:
        return loadLE<qint32>(a.data()) < loadLE<qint32>(b.data());
    case Storage::KeyAsInt64:
    case Storage::Integer:
    case Storage::Timestamp:
    case Storage::Time:
        return loadLE<qint64>(a.data()) < loadLE<qint64>(b.data());
    case Storage::Text:
    case Storage::Boolean:
        break;
    }
    return a < b; // by bytes, as unsigned numbers
}

/// Append booleans of a byte each as bits.
void appendBits(const char *values, size_t n, std::vector<char> &page)
{
    constexpr size_t kBits = 8;
    const size_t begin = page.size();
    page.resize(begin + (n + kBits - 1) / kBits);
    for (size_t i = 0; i < n; ++i) {
        char &bits = page[begin + i / kBits];
        bits = static_cast<char>(bits | values[i] << i % kBits);
    }
}

std::string_view viewOf(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<size_t>(bytes.size())};
}

void putLength(std::vector<char> &page, size_t at, size_t length)
{
    storeLE(static_cast<quint32>(length), page.data() + at);
}

} // namespace

ColumnWriter::ColumnWriter(const WriterColumn &column, const WriteOptions &options,
                           PageCompressor &compressor)
    : m_column(column)
    , m_options(options)
    , m_capacity(static_cast<size_t>(options.pageSizeKiB) * 1024)
    , m_maxRows(m_capacity / std::max<size_t>(valueBytes(column.storage), 1))
    , m_firstNegativeKey(column.storage == Storage::KeyAsInt32 ? 0x80000000 : cell::kMissingKey)
    , m_hasDictionary(options.dictionaryPages && column.storage != Storage::Boolean)
    , m_compressor(compressor)
    , m_usesDictionary(m_hasDictionary)
{
}

ColumnWriter::Added ColumnWriter::add(const uchar *cell)
{
    switch (m_column.storage) {
    case Storage::Text:
        return addText(cell);
    case Storage::Double: {
        const auto value = loadNative<double>(cell);
        cell::isMissingDouble(value) ? addNull() : addNumber(value);
        return Added::Yes;
    }
    case Storage::KeyAsUint32:
    case Storage::KeyAsInt32:
    case Storage::KeyAsInt64:
        addKey(loadNative<quint32>(cell));
        return Added::Yes;
    case Storage::Boolean:
    case Storage::Integer:
    case Storage::Date:
    case Storage::Timestamp:
    case Storage::Time:
        break;
    }
    return addTyped(cell);
}

void ColumnWriter::addKey(quint32 key)
{
    // Kept for saved graphs: only 0xFFFFFFFF becomes a null, because saved graphs rely on
    // 0xFFFFFFFE being stored as a value (ParquetWriter.OnlyOneMissingKeyIsNull).
    if (key == cell::kMissingKey) {
        return addNull();
    }
    if (key >= m_firstNegativeKey) {
        count(&m_negativeKeys);
    }
    m_column.storage == Storage::KeyAsInt64 ? addNumber(static_cast<quint64>(key)) : addNumber(key);
}

/// The stored value has the width of its physical type.
ColumnWriter::Added ColumnWriter::addTyped(const uchar *cell)
{
    if (isNull(m_column.cellType, cell)) {
        addNull();
        return Added::Yes;
    }
    const auto value = typedValueOf(m_column.storage, m_column.cellType, cell);
    // The mark of the column says whether its timestamps are those of UTC.
    if (!value || m_isUtc.value_or(value->isUtc) != value->isUtc) {
        return Added::WrongValue;
    }
    m_isUtc = value->isUtc;
    switch (m_column.storage) {
    case Storage::Boolean:
        addNumber(static_cast<quint8>(value->number));
        break;
    case Storage::Date:
        addNumber(static_cast<qint32>(value->number));
        break;
    default:
        addNumber(value->number);
    }
    return Added::Yes;
}

/// Memory for `bytes` more bytes after the used ones.
inline char *ColumnWriter::room(size_t bytes)
{
    if (m_values.size() - m_used < bytes) {
        m_values.resize(std::max(m_used + bytes, std::min(m_values.size() * 2, m_capacity)));
    }
    return m_values.data() + m_used;
}

template <class T> void ColumnWriter::addNumber(T value)
{
    char *const plain = room(sizeof value);
    storeLE(value, plain);
    addValue(sizeof value, 0);
}

ColumnWriter::Added ColumnWriter::addText(const uchar *cell)
{
    const cell::Text text = cell::readText(cell);
    if (text.isMissing()) {
        addNull();
        return Added::Yes;
    }
    constexpr size_t kMaxBytesPerUnit = 3;
    char *plain = room(kSizeBytes + static_cast<size_t>(text.size()) * kMaxBytesPerUnit);
    qsizetype replaced = 0;
    const auto n =
        static_cast<size_t>(utf16ToUtf8(text.data(), text.size(), plain + kSizeBytes, &replaced));
    if (replaced != 0) [[unlikely]] {
        count(&m_replacedTexts);
    }
    storeLE(static_cast<quint32>(n), plain);
    if (n + kSizeBytes + 1 > m_capacity) {
        return Added::TextTooLong;
    }
    if (m_used + kSizeBytes + n > m_capacity) {
        finishPage();
        std::copy_n(plain, kSizeBytes + n, m_values.data()); // the start of the new page
    }
    addValue(kSizeBytes + n, kSizeBytes);
    return Added::Yes;
}

/// Add the value of `bytes` bytes that was stored after the used bytes.
inline void ColumnWriter::addValue(size_t bytes, size_t prefix)
{
    const char *const plain = m_values.data() + m_used;
    const qint32 entries = m_index.size();
    if (m_usesDictionary && !addToDictionary(plain, bytes)) {
        finishPage(); // a page has either indexes or values
        m_usesDictionary = false;
    }
    // The range has all values of the dictionary.
    const bool isKnown = m_usesDictionary && m_index.size() == entries;
    if (m_options.statistics && !isKnown) {
        updateRange(plain + prefix, bytes - prefix);
    }
    if (!m_usesDictionary) {
        m_used += bytes;
    }
    addRow(1);
}

/// Returns false if the dictionary would become larger than a page.
bool ColumnWriter::addToDictionary(const char *plain, size_t n)
{
    if (m_index.bytes().size() + n > m_capacity) {
        return false;
    }
    m_indexes.push_back(m_index.add({plain, n}));
    return true;
}

void ColumnWriter::addNull()
{
    ++m_range.nulls;
    addRow(0);
}

/// Count the value of the current row.
void ColumnWriter::count(ChangedValues *changed) const
{
    if (changed->count++ == 0) {
        changed->firstRow = m_finishedRows + static_cast<qint64>(m_levels.size()) + 1;
    }
}

inline void ColumnWriter::addRow(uchar level)
{
    m_levels.push_back(level);
    if (m_levels.size() == m_maxRows) {
        finishPage();
    }
}

void ColumnWriter::updateRange(const char *value, size_t n)
{
    // A NaN has no place in the order of doubles.
    const bool isNan = m_column.storage == Storage::Double && std::isnan(loadLE<double>(value));
    if (isNan || n > kMaxRangeBytes) {
        m_range.isKnown = false;
    }
    if (!m_range.isKnown) {
        return;
    }
    // Most values are inside the range, and cost two comparisons.
    const auto bytes = static_cast<qsizetype>(n);
    if (!m_range.smallest || isBefore(m_column.storage, {value, n}, viewOf(*m_range.smallest))) {
        m_range.smallest = QByteArray(value, bytes);
    }
    if (!m_range.largest || isBefore(m_column.storage, viewOf(*m_range.largest), {value, n})) {
        m_range.largest = QByteArray(value, bytes);
    }
}

void ColumnWriter::appendValues(std::vector<char> &page) const
{
    if (m_column.storage == Storage::Boolean) {
        return appendBits(m_values.data(), m_used, page);
    }
    if (!m_usesDictionary) {
        page.insert(page.end(), m_values.begin(), m_values.begin() + static_cast<qptrdiff>(m_used));
        return;
    }
    // The width depends on the entries so far, so that early pages have narrower indexes.
    const int bitWidth = bitWidthOf(static_cast<quint32>(std::max(m_index.size() - 1, 0)));
    page.push_back(static_cast<char>(bitWidth));
    appendIndexes(m_indexes, bitWidth, page);
}

void ColumnWriter::finishPage()
{
    if (m_levels.empty()) {
        return;
    }
    std::vector<char> page = m_compressor.takeBuffer();
    page.resize(kSizeBytes);
    appendLevels(m_levels, page);
    putLength(page, 0, page.size() - kSizeBytes);
    appendValues(page);
    const auto rawBytes = static_cast<qint32>(page.size());
    // The dictionary may still grow after this page; its entries keep their numbers.
    m_pages.push_back({m_compressor.submit(std::move(page)), static_cast<qint32>(m_levels.size()),
                       rawBytes, m_usesDictionary});
    m_hasDictionaryPages |= m_usesDictionary;
    m_finishedRows += static_cast<qint64>(m_levels.size());
    m_levels.clear();
    m_indexes.clear();
    m_used = 0;
}

std::optional<FinishedPage> ColumnWriter::finishDictionary()
{
    if (!m_hasDictionaryPages) {
        return std::nullopt;
    }
    const std::vector<char> &bytes = m_index.bytes();
    return FinishedPage{m_compressor.submit(bytes), m_index.size(),
                        static_cast<qint32>(bytes.size()), true};
}

/// Each row group has a dictionary of its own.
void ColumnWriter::startGroup()
{
    m_pages.clear();
    m_range = {};
    m_index.clear();
    m_usesDictionary = m_hasDictionary;
    m_hasDictionaryPages = false;
}

} // namespace corvanta::parquet
