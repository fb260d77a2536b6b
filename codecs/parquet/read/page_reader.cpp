// A chunk is a sequence of pages (parquet-format, README.md, section "Data Pages"):
//
//   PageHeader      a Thrift compact record of unknown length
//   body            header.compressedPageSize bytes
//
//   page            body
//   data version 1  compressed together: definition levels, values
//   data version 2  repetition levels, definition levels (never compressed); then the values
//   dictionary      compressed together: PLAIN values
//   index           skipped
#include "codecs/parquet/read/page_reader.h"

#include "base/checked.h"
#include "base/limits.h"
#include "codecs/deflate/crc32.h"
#include "codecs/parquet/encoding/rle_hybrid.h"

#include <QLatin1StringView>

#include <algorithm>
#include <cstring>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

/// First size of the buffer for headers. A header has some 20 to 100 bytes, and more with
/// statistics.
constexpr size_t kBufferBytes = 16384;

/// Bytes by which the last page may exceed its chunk: old writers did not count the header of the
/// dictionary page.
constexpr qint64 kUncountedBytes = 100;

/// Compares the CRC-32 of the stored bytes, with the levels of version 2.
bool hasChecksum(std::span<const uchar> body, qint32 crc)
{
    const std::span<const char> bytes{reinterpret_cast<const char *>(body.data()), body.size()};
    return deflate::crc32(0, bytes) == static_cast<quint32>(crc);
}

} // namespace

void PageReader::start(qint64 offset, qint64 bytes, qint32 codec)
{
    m_fileAt = offset;
    m_chunkEnd = std::min(checkedAdd(offset, bytes).value_or(m_file.size()), m_file.size());
    m_codec = codec;
    m_begin = m_end = 0;
    m_isFileEnd = false;
    m_buffer.resize(kBufferBytes);
}

/// Read up to `maxBytes` bytes of the page into the buffer. `failure` is the detail of the fault if
/// the file has no more bytes.
Result<void, Error> PageReader::fill(size_t maxBytes, const QString &failure)
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    if (m_end >= maxBytes || m_isFileEnd) {
        return {};
    }
    const auto wanted = static_cast<qint64>(maxBytes - m_end);
    const qint64 got = m_file.readAt(m_fileAt, m_buffer.data() + m_end, wanted);
    if (got < 0) {
        return Fault{Error::ShortRead, u"a page cannot be read"_s};
    }
    if (got == 0) {
        return bad(failure);
    }
    m_isFileEnd = got < wanted;
    m_fileAt += got;
    m_end += static_cast<size_t>(got);
    return {};
}

Result<PageHeader, Error> PageReader::nextHeader()
{
    if (auto filled = fill(kBufferBytes, u"the file ends where a page should begin"_s); !filled) {
        return filled.fault();
    }
    const QString damaged = u"a page header is damaged"_s;
    // The length of a header is unknown. Double the buffer until the header decodes.
    for (;;) {
        CompactReader in({m_buffer.data() + m_begin, m_end - m_begin});
        PageHeader header;
        if (const auto bytes = readRecord(in, header)) {
            m_begin += static_cast<size_t>(*bytes);
            return header;
        }
        if (m_isFileEnd || m_buffer.size() * 2 > size_t(limits::kParquetPageHeaderBytes)) {
            return bad(damaged);
        }
        m_buffer.resize(m_buffer.size() * 2);
        if (auto filled = fill(m_buffer.size(), damaged); !filled) {
            return filled.fault();
        }
    }
}

/// Read the `bytes` bytes after the header, and add zeros.
Result<std::span<const uchar>, Error> PageReader::readBody(qint64 bytes)
{
    if (bytes < 0 || bytes > limits::kParquetPageBytes || bytes > m_file.size() - pageOffset()) {
        return bad(u"a page of %1 bytes does not fit the file"_s.arg(QString::number(bytes)));
    }
    if (bytes > m_chunkEnd + kUncountedBytes - pageOffset()) {
        return bad(
            u"a page of %1 bytes does not fit its column chunk"_s.arg(QString::number(bytes)));
    }
    const auto size = static_cast<size_t>(bytes);
    uchar *const body = m_body.room(size + kPageTailBytes);
    const size_t buffered = std::min(size, m_end - m_begin);
    std::memcpy(body, m_buffer.data() + m_begin, buffered);
    m_begin += buffered;
    const auto missing = static_cast<qint64>(size - buffered);
    if (missing > 0) {
        const qint64 got = m_file.readAt(m_fileAt, body + buffered, missing);
        if (got < 0) {
            return Fault{Error::ShortRead, u"a page cannot be read"_s};
        }
        if (got != missing) {
            return bad(u"the file ends in a page"_s);
        }
        m_fileAt += missing;
    }
    std::memset(body + size, 0, kPageTailBytes);
    return std::span<const uchar>{body, size};
}

/// Uncompress `in` to `bytes` bytes, and add zeros.
Result<std::span<const uchar>, Error> PageReader::uncompress(std::span<const uchar> in,
                                                             qint64 bytes)
{
    if (m_codec == kUncompressed) {
        return in;
    }
    if (bytes < 0 || bytes > limits::kParquetPageBytes) {
        return bad(u"a page of %1 bytes is too large"_s.arg(QString::number(bytes)));
    }
    auto &decompressor = m_decompressors[static_cast<size_t>(m_codec)];
    if (!decompressor) {
        decompressor = makeDecompressor(m_codec);
    }
    const auto size = static_cast<size_t>(bytes);
    uchar *const data = m_data.room(size + kPageTailBytes);
    const bool isEmpty = size == 0 && in.empty(); // not valid data in most codecs
    if (!isEmpty && !decompressor->uncompress(in, {data, size})) {
        return bad(u"a page is not valid %1 data"_s.arg(codecName(m_codec)));
    }
    std::memset(data + size, 0, kPageTailBytes);
    return std::span<const uchar>{data, size};
}

Result<Page, Error> PageReader::dataPage(const PageHeader &header, std::span<const uchar> body)
{
    if (!header.dataPageHeader) {
        return bad(u"a page header is incomplete"_s);
    }
    const DataPageHeader &details = *header.dataPageHeader;
    const auto data = uncompress(body, header.uncompressedPageSize);
    if (!data) {
        return data.fault();
    }
    return Page{kDataPage, details.numValues, details.encoding, details.definitionLevelEncoding, {},
                *data};
}

Result<Page, Error> PageReader::dataPageV2(const PageHeader &header, std::span<const uchar> body)
{
    if (!header.dataPageHeaderV2) {
        return bad(u"a page header is incomplete"_s);
    }
    const DataPageHeaderV2 &details = *header.dataPageHeaderV2;
    const qint64 repetition = details.repetitionLevelsByteLength;
    const qint64 definition = details.definitionLevelsByteLength;
    const qint64 levels = repetition + definition;
    if (repetition < 0 || definition < 0 || levels > static_cast<qint64>(body.size())) {
        return bad(u"the levels of a page do not fit it"_s);
    }
    // Repetition levels are skipped: a column that is not repeated has none.
    Page page{kDataPageV2, details.numValues, details.encoding, kRle, {}, {}};
    page.levels = body.subspan(static_cast<size_t>(repetition), static_cast<size_t>(definition));
    page.data = body.subspan(static_cast<size_t>(levels));
    if (details.isCompressed.value_or(true)) {
        const auto data = uncompress(page.data, header.uncompressedPageSize - levels);
        if (!data) {
            return data.fault();
        }
        page.data = *data;
    }
    return page;
}

Result<Page, Error> PageReader::dictionaryPage(const PageHeader &header,
                                               std::span<const uchar> body)
{
    if (!header.dictionaryPageHeader) {
        return bad(u"a page header is incomplete"_s);
    }
    const DictionaryPageHeader &details = *header.dictionaryPageHeader;
    const auto data = uncompress(body, header.uncompressedPageSize);
    if (!data) {
        return data.fault();
    }
    return Page{kDictionaryPage, details.numValues, details.encoding, 0, {}, *data};
}

/// Read the header and the body of the next page of any type.
Result<std::span<const uchar>, Error> PageReader::nextBody(PageHeader &header)
{
    const qint64 begin = pageOffset();
    if (isAtEnd()) { // what follows are pages of another column
        return bad(u"a column chunk has fewer values than its row group has rows"_s);
    }
    auto next = nextHeader();
    if (!next) {
        return next.fault();
    }
    header = *std::move(next);
    auto body = readBody(header.compressedPageSize);
    if (body && m_checksums == Checksums::Compared && header.crc &&
        !hasChecksum(*body, *header.crc)) {
        return bad(u"the page at byte %1 does not have its checksum"_s.arg(begin));
    }
    return body;
}

Result<Page, Error> PageReader::next()
{
    for (;;) {
        PageHeader header;
        const auto body = nextBody(header);
        if (!body) {
            return body.fault();
        }
        switch (header.type) {
        case kDataPage:
            return dataPage(header, *body);
        case kDataPageV2:
            return dataPageV2(header, *body);
        case kDictionaryPage:
            return dictionaryPage(header, *body);
        default: // an index page, or a type of a later version of the format
            break;
        }
    }
}

} // namespace corvanta::parquet
