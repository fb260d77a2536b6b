// Reads and uncompresses the pages of a column chunk, in file order.
#pragma once
#include "codecs/parquet/encoding/codec.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/read/cell_block.h"
#include "codecs/parquet/read/shared_file.h"

#include <array>

namespace corvanta::parquet {

/// An uncompressed page. kPageTailBytes readable bytes follow `data` and `levels`.
struct Page
{
    /// kDictionaryPage, kDataPage or kDataPageV2.
    PageType type = kDataPage;
    /// Number of rows with nulls, or of dictionary entries. From the file: it may be negative.
    qint32 numValues = 0;
    /// Encoding of the values; an Encoding if the file is valid.
    qint32 encoding = 0;
    /// Encoding of the definition levels. kRle in version 2.
    qint32 levelEncoding = 0;
    /// Definition levels of version 2 only.
    std::span<const uchar> levels;
    /// In version 1 it starts with the definition levels.
    std::span<const uchar> data;
};

/// Threads: one thread at a time per reader. Readers share only the file, which has a lock.
class PageReader
{
public:
    /// Whether pages are compared with the checksums in their headers.
    enum class Checksums : bool { Ignored, Compared };

    /// `file` must outlive the reader.
    PageReader(SharedFile &file, Checksums checksums)
        : m_file(file)
        , m_checksums(checksums)
    {
    }

    /// Move to the first page of a chunk of `bytes` bytes. The arguments come from its metadata;
    /// the codec must be one that makeDecompressor() supports, or kUncompressed.
    void start(qint64 offset, qint64 bytes, qint32 codec);

    /// Whether all pages of the chunk are read.
    bool isAtEnd() const { return pageOffset() >= m_chunkEnd; }
    /// Read the next dictionary or data page. It is valid until the next call. Index pages are
    /// skipped. Errors: BadData, also at the end of the chunk; the detail does not name the column.
    Result<Page, Error> next();

private:
    // Bytes of headers are read through m_buffer. A body is read directly, after the part of it
    // that is in the buffer.
    Result<void, Error> fill(size_t maxBytes, const QString &failure);
    Result<PageHeader, Error> nextHeader();
    Result<std::span<const uchar>, Error> nextBody(PageHeader &header);
    Result<std::span<const uchar>, Error> readBody(qint64 bytes);
    Result<std::span<const uchar>, Error> uncompress(std::span<const uchar> in, qint64 bytes);
    Result<Page, Error> dataPage(const PageHeader &header, std::span<const uchar> body);
    Result<Page, Error> dataPageV2(const PageHeader &header, std::span<const uchar> body);
    Result<Page, Error> dictionaryPage(const PageHeader &header, std::span<const uchar> body);
    // The offset of a fault is that of the first unread byte.
    Fault<Error> bad(const QString &why) const { return {Error::BadData, why, pageOffset()}; }
    qint64 pageOffset() const { return m_fileAt - static_cast<qint64>(m_end - m_begin); }

    SharedFile &m_file;
    const Checksums m_checksums;
    qint64 m_fileAt = 0; // offset of the next byte to read into the buffer
    // Of the current chunk.
    qint64 m_chunkEnd = 0;
    qint32 m_codec = kUncompressed;
    std::array<std::unique_ptr<Decompressor>, kLz4Raw + 1>
        m_decompressors;         // by codec, created when first used
    std::vector<uchar> m_buffer; // headers; the unread bytes are those from m_begin to m_end
    size_t m_begin = 0;
    size_t m_end = 0;
    bool m_isFileEnd = false;
    // The stored and the uncompressed bytes of the current page.
    Scratch m_body;
    Scratch m_data;
};

} // namespace corvanta::parquet
