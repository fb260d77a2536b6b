// codecs/parquet/page_reader.h
// Walks the pages of a column chunk.
#pragma once
#include "codecs/parquet/encoding/codec.h"
#include "codecs/parquet/metadata/error.h"
#include "codecs/parquet/read/cell_block.h"
#include "codecs/parquet/read/shared_file.h"

#include <array>

namespace corvanta::parquet {

/// A page, uncompressed. Behind `data` lie kPageTailBytes zero bytes.
struct Page
{
    PageType type = kDataPage; ///< dictionary or data, of either version
    qint32 numValues = 0;
    qint32 encoding = 0;
    qint32 levelEncoding = 0;      ///< of version 1, whose levels are the data's beginning
    std::span<const uchar> levels; ///< of version 2
    std::span<const uchar> data;
};

/// Threads: one at a time.
class PageReader
{
public:
    /// What happens to pages that do not have the checksum in their header.
    enum class Checksums : bool { Ignored, Compared };

    PageReader(SharedFile &file, Checksums checksums)
        : m_file(file)
        , m_checksums(checksums)
    {
    }

    /// Go to the first page of a chunk.
    void start(qint64 offset, qint32 codec);

    /// The next dictionary or data page; valid until the next call. Index pages are passed over.
    /// Errors: BadData.
    Result<Page, Error> next();

private:
    enum class Fill : quint8 { Read, Ended, Failed };
    Fill fill(size_t maxBytes);
    Result<PageHeader, Error> nextHeader();
    Result<std::span<const uchar>, Error> readBody(qint64 bytes);
    Result<std::span<const uchar>, Error> uncompress(std::span<const uchar> in, qint64 bytes);
    Result<Page, Error> dataPage(const PageHeader &header, std::span<const uchar> body);
    Result<Page, Error> dataPageV2(const PageHeader &header, std::span<const uchar> body);
    Result<Page, Error> dictionaryPage(const PageHeader &header, std::span<const uchar> body);
    Fault<Error> bad(const QString &why) const { return {Error::BadData, why, pageOffset()}; }
    qint64 pageOffset() const { return m_fileAt - static_cast<qint64>(m_end - m_begin); }

    SharedFile &m_file;
    const Checksums m_checksums;
    qint64 m_fileAt = 0; // of the next byte to read into the buffer
    qint32 m_codec = kUncompressed;
    std::array<std::unique_ptr<Decompressor>, kLz4Raw + 1>
        m_decompressors;         // by codec, when first used
    std::vector<uchar> m_buffer; // for headers
    size_t m_begin = 0;
    size_t m_end = 0;
    bool m_isFileEnd = false;
    Scratch m_body;
    Scratch m_data;
};

} // namespace corvanta::parquet
