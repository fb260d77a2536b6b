// The uncompressed data of a page (parquet-format, Encodings.md). Numbers are little-endian:
//
//   levels      only for optional columns: one bit per row, 1 if the value is not null
//     RLE         u32 length (version 1 only), hybrid runs of that many bytes
//     BIT_PACKED  (rows + 7) / 8 bytes, least significant bit first
//   values      only those that are not null
//     PLAIN       fixed width: the values; byte arrays: u32 length and the bytes; booleans: bits
//     dictionary  u8 bit width, hybrid runs of indexes into the dictionary page
//     RLE         booleans: u32 length, hybrid runs of one bit
//     others      see encodings.cpp
#include "codecs/parquet/read/column_reader.h"

#include "base/bytes.h"
#include "codecs/parquet/read/encodings.h"

#include <QLatin1StringView>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

constexpr size_t kLengthBytes = 4; // of the length before runs and before byte arrays

/// Offset of the first page of a chunk: the dictionary page if it comes first. Some writers set its
/// offset to 0 if there is none.
qint64 firstPageOf(const ColumnMetaData &chunk)
{
    const qint64 dictionary = chunk.dictionaryPageOffset.value_or(0);
    return dictionary > 0 && dictionary < chunk.dataPageOffset ? dictionary : chunk.dataPageOffset;
}

/// Bytes of a chunk of `group`, as its metadata says, but not those of the chunk after it: pages of
/// that one are values of another column.
qint64 bytesOf(const RowGroup &group, size_t chunk)
{
    const ColumnMetaData &metaData = *group.columns[chunk].metaData;
    qint64 bytes = metaData.totalCompressedSize;
    if (chunk + 1 < group.columns.size() && group.columns[chunk + 1].metaData) {
        const qint64 upToNext =
            firstPageOf(*group.columns[chunk + 1].metaData) - firstPageOf(metaData);
        bytes = upToNext > 0 ? std::min(bytes, upToNext) : bytes;
    }
    return bytes;
}

/// Remove a u32 length and as many bytes from the start of `data`. Returns false if they do not
/// fit.
bool takeCounted(std::span<const uchar> &data, std::span<const uchar> &bytes)
{
    if (data.size() < kLengthBytes) {
        return false;
    }
    const size_t length = loadLE<quint32>(data.data());
    if (length > data.size() - kLengthBytes) {
        return false;
    }
    bytes = data.subspan(kLengthBytes, length);
    data = data.subspan(kLengthBytes + length);
    return true;
}

} // namespace

ColumnReader::ColumnReader(SharedFile &file, const FileMetaData &metaData, Column column,
                           const ReadOptions &options)
    : m_metaData(metaData)
    , m_column(std::move(column))
    , m_extended(options.extendedEncodings)
    , m_pages(file, options.pageChecksums ? PageReader::Checksums::Compared
                                          : PageReader::Checksums::Ignored)
{
}

Fault<Error> ColumnReader::bad(const QString &why, Error code) const
{
    return {code, columnDetail(m_column.name, why)};
}

bool ColumnReader::startGroup()
{
    m_pageRows = 0; // a page belongs to one row group, and so does a dictionary
    m_dictionary.reset();
    // Row groups without rows need not have pages.
    while (m_groupRows <= 0) {
        if (m_group == m_metaData.rowGroups.size()) {
            return false;
        }
        const RowGroup &group = m_metaData.rowGroups[m_group++];
        const ColumnMetaData &chunk = *group.columns[m_column.chunk].metaData;
        m_groupRows = group.numRows;
        m_chunkValues = chunk.numValues;
        m_hasDataPage = false;
        m_pages.start(firstPageOf(chunk), bytesOf(group, m_column.chunk), chunk.codec);
    }
    return true;
}

Result<bool, Error> ColumnReader::next(CellBlock &block)
{
    if (m_groupRows <= 0 && !startGroup()) {
        return false;
    }
    while (m_pageRows == 0) {
        if (auto done = nextPage(); !done) {
            return done.fault();
        }
    }
    const auto rows = static_cast<qsizetype>(
        std::min({m_pageRows, m_groupRows, static_cast<qint64>(kBlockRows)}));
    if (auto done = decodeBlock(rows, block); !done) {
        return done.fault();
    }
    m_pageRows -= rows;
    m_groupRows -= rows;
    block.hasSurplus =
        m_groupRows == 0 && (m_pageRows > 0 || (m_chunkValues > 0 && !m_pages.isAtEnd()));
    return true;
}

ColumnReader::Done ColumnReader::nextPage()
{
    // The pages that follow belong to another chunk.
    if (m_hasDataPage && m_chunkValues <= 0) {
        return bad(u"a column chunk has fewer values than its row group has rows"_s);
    }
    const auto page = m_pages.next();
    if (!page) {
        return bad(page.fault().detail, page.fault().code);
    }
    if (page->numValues < 0) {
        return bad(u"a page has a negative number of values"_s);
    }
    return page->type == kDictionaryPage ? readDictionary(*page) : startDataPage(*page);
}

ColumnReader::Done ColumnReader::readDictionary(const Page &page)
{
    if (page.encoding != kPlain && page.encoding != kPlainDictionary) {
        return bad(
            u"a dictionary in the encoding %1 is not supported"_s.arg(encodingName(page.encoding)));
    }
    // No encoding of booleans uses a dictionary. Ignore a superfluous one.
    if (m_column.physical == kBoolean) {
        return {};
    }
    m_data = page.data;
    m_values = Values::Plain;
    const auto dictionary = std::make_shared<CellBlock>();
    const size_t smallest =
        m_column.valueBytes != 0 ? static_cast<size_t>(m_column.valueBytes) : kLengthBytes;
    // Check the number before it becomes the size of an allocation.
    if (static_cast<size_t>(page.numValues) > m_data.size() / smallest) {
        return bad(u"its dictionary is truncated"_s);
    }
    reserveRows(m_column, page.numValues, *dictionary);
    if (auto done = decodePlain(page.numValues, *dictionary); !done) {
        return done;
    }
    m_dictionary = dictionary;
    return {};
}

ColumnReader::Done ColumnReader::startDataPage(const Page &page)
{
    std::span<const uchar> data = page.data;
    m_pageRows = page.numValues;
    m_chunkValues -= page.numValues;
    m_hasDataPage = true;
    if (auto done = startLevels(page, data); !done) {
        return done;
    }
    return startValues(page.encoding, data);
}

ColumnReader::Done ColumnReader::startLevels(const Page &page, std::span<const uchar> &data)
{
    m_hasLevels = m_column.isOptional;
    m_levelsAreBits = false;
    if (!m_hasLevels) {
        return {};
    }
    if (page.type == kDataPageV2) {
        m_levelRuns = HybridDecoder(page.levels, 1);
        return {};
    }
    if (page.levelEncoding == kRle) {
        std::span<const uchar> runs;
        if (!takeCounted(data, runs)) {
            return bad(u"the levels of a page do not fit it"_s);
        }
        m_levelRuns = HybridDecoder(runs, 1);
        return {};
    }
    if (page.levelEncoding == kBitPacked) {
        return startLevelBits(page, data);
    }
    return bad(
        u"levels in the encoding %1 are not supported"_s.arg(encodingName(page.levelEncoding)));
}

/// The levels of old files. Unlike runs, they have no length of their own.
ColumnReader::Done ColumnReader::startLevelBits(const Page &page, std::span<const uchar> &data)
{
    const auto bytes = (static_cast<size_t>(page.numValues) + 7) / 8;
    if (bytes > data.size()) {
        return bad(u"the levels of a page do not fit it"_s);
    }
    m_levelsAreBits = true;
    m_levelAt = 0;
    m_levelBits = data.first(bytes);
    data = data.subspan(bytes);
    return {};
}

ColumnReader::Done ColumnReader::startValues(qint32 encoding, std::span<const uchar> data)
{
    const bool isBoolean = m_column.physical == kBoolean;
    m_data = data;
    m_bit = 0;
    if (encoding == kPlain) {
        m_values = isBoolean ? Values::Booleans : Values::Plain;
        return {};
    }
    if (encoding == kRle && isBoolean) {
        return startBooleanRuns(data);
    }
    const bool isDictionary = encoding == kPlainDictionary || encoding == kRle ||
                              (encoding == kRleDictionary && m_extended);
    return isDictionary && !isBoolean ? startIndexes(data) : startExtended(encoding, data);
}

ColumnReader::Done ColumnReader::startBooleanRuns(std::span<const uchar> data)
{
    std::span<const uchar> runs;
    m_values = Values::BooleanRuns;
    // Some writers omit the runs in a page that has only nulls.
    if (!data.empty() && !takeCounted(data, runs)) {
        return bad(u"the values of a page are truncated"_s);
    }
    m_runs = HybridDecoder(runs, 1);
    return {};
}

ColumnReader::Done ColumnReader::startIndexes(std::span<const uchar> data)
{
    constexpr int kMaxBits = 32;
    m_values = Values::Dictionary;
    // A page that has only nulls may be empty. A width of 0 needs no bytes either.
    const int bitWidth = data.empty() ? 0 : data[0];
    if (bitWidth > kMaxBits) {
        return bad(u"a dictionary index of %1 bits"_s.arg(QString::number(bitWidth)));
    }
    m_runs = HybridDecoder(data.empty() ? data : data.subspan(1), bitWidth);
    return {};
}

/// Convert the newer encodings to PLAIN. Runs once per page and needs memory for all its values.
ColumnReader::Done ColumnReader::startExtended(qint32 encoding, std::span<const uchar> data)
{
    const bool isBoolean = m_column.physical == kBoolean;
    const bool isExtended = hasPlainForm(encoding, m_column.physical) ||
                            (encoding == kRleDictionary && !isBoolean && !m_extended);
    if (isExtended && !m_extended) {
        return bad(u"the encoding %1"_s.arg(encodingName(encoding)), Error::NeedsExtended);
    }
    if (!isExtended) {
        return bad(u"the encoding %1 is not supported"_s.arg(encodingName(encoding)));
    }
    // Some writers omit the values in a page that has only nulls.
    if (!data.empty() &&
        !toPlain(encoding, m_column, data, static_cast<qint32>(m_pageRows), m_plain)) {
        return bad(u"the values of a page are no %1 data"_s.arg(encodingName(encoding)));
    }
    m_values = Values::Plain;
    m_data = data.empty() ? data
                          : std::span<const uchar>(m_plain).first(m_plain.size() - kPageTailBytes);
    return {};
}

ColumnReader::Done ColumnReader::decodeBlock(qsizetype rows, CellBlock &block)
{
    reserveRows(m_column, rows, block);
    qsizetype values = rows;
    if (m_hasLevels) {
        if (auto done = decodeLevels(rows, values); !done) {
            return done;
        }
    }
    if (values != 0) { // a page with only nulls need not have a dictionary
        if (auto done = decodeValues(values, block); !done) {
            return done;
        }
    }
    if (values != rows) {
        spreadOverNulls(m_column, m_levels, block);
    }
    return {};
}

ColumnReader::Done ColumnReader::decodeLevels(qsizetype rows, qsizetype &values)
{
    m_levels.resize(static_cast<size_t>(rows));
    if (m_levelsAreBits) {
        // Every block but the last one of a page starts and ends at a whole byte.
        unpackBits(m_levelBits.data() + m_levelAt / 8, rows, m_levels.data());
        m_levelAt += rows;
    } else if (!m_levelRuns.read(m_levels.data(), rows)) {
        return bad(u"the levels of a page are truncated or damaged"_s);
    }
    values = std::count(m_levels.begin(), m_levels.end(), uchar(1));
    return {};
}

ColumnReader::Done ColumnReader::decodeValues(qsizetype n, CellBlock &block)
{
    switch (m_values) {
    case Values::Plain:
        return decodePlain(n, block);
    case Values::Booleans:
    case Values::BooleanRuns:
        return decodeBooleans(n, block);
    case Values::Dictionary:
        break;
    }
    return decodeIndexes(n, block);
}

bool ColumnReader::takeTexts(qsizetype n)
{
    m_texts.clear();
    for (qsizetype i = 0; i < n; ++i) {
        std::span<const uchar> text;
        if (!takeCounted(m_data, text)) {
            return false;
        }
        m_texts.emplace_back(reinterpret_cast<const char *>(text.data()), text.size());
    }
    return true;
}

ColumnReader::Done ColumnReader::decodePlain(qsizetype n, CellBlock &block)
{
    if (m_column.valueBytes == 0) {
        if (!takeTexts(n)) {
            return bad(u"the values of a page are truncated"_s);
        }
        convertBytes(m_column, m_texts, block);
        return {};
    }
    const auto width = static_cast<size_t>(m_column.valueBytes);
    if (static_cast<size_t>(n) > m_data.size() / width) {
        return bad(u"the values of a page are truncated"_s);
    }
    convertFixed(m_column, m_data.data(), n, block);
    m_data = m_data.subspan(static_cast<size_t>(n) * width);
    return {};
}

ColumnReader::Done ColumnReader::decodeIndexes(qsizetype n, CellBlock &block)
{
    if (!m_dictionary) {
        return bad(u"a page needs a dictionary that is not there"_s);
    }
    m_indexes.resize(static_cast<size_t>(n));
    if (!m_runs.read(m_indexes.data(), n)) {
        return bad(u"the values of a page are truncated"_s);
    }
    // One check of the largest index replaces a check per value in gather().
    const quint32 largest = *std::max_element(m_indexes.begin(), m_indexes.end());
    if (largest >= static_cast<quint64>(m_dictionary->rows)) {
        return bad(u"entry %1 of a dictionary of %2"_s.arg(QString::number(largest),
                                                           QString::number(m_dictionary->rows)));
    }
    gather(m_dictionary, m_indexes, block);
    return {};
}

/// Unpack the next booleans to one byte each. Returns false if the page has fewer.
bool ColumnReader::takeBooleans(std::span<uchar> values)
{
    if (m_values == Values::BooleanRuns) {
        return m_runs.read(values.data(), static_cast<qsizetype>(values.size()));
    }
    // PLAIN booleans are bits, least significant bit first. Blocks may end inside a byte.
    const qsizetype available = static_cast<qsizetype>(m_data.size()) * 8 - m_bit;
    if (static_cast<qsizetype>(values.size()) > available) {
        return false;
    }
    for (uchar &value : values) {
        value = m_data[static_cast<size_t>(m_bit / 8)] >> (m_bit % 8) & 1;
        ++m_bit;
    }
    return true;
}

ColumnReader::Done ColumnReader::decodeBooleans(qsizetype n, CellBlock &block)
{
    std::vector<uchar> values(static_cast<size_t>(n));
    if (!takeBooleans(values)) {
        return bad(u"the values of a page are truncated"_s);
    }
    convertFixed(m_column, values.data(), n, block);
    return {};
}

} // namespace corvanta::parquet
