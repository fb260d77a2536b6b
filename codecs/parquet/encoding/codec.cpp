// The page codecs of parquet-format, Compression.md. Each class wraps one library:
//
//   SNAPPY   raw Snappy, without the framing format
//   GZIP     one or more gzip members (RFC 1952)
//   ZSTD     one Zstandard frame (RFC 8878)
//   LZ4_RAW  one LZ4 block, without a frame
//   BROTLI   one Brotli stream (RFC 7932)
//
// The page header has the uncompressed size, so that every output buffer has its final size.
#include "codecs/parquet/encoding/codec.h"

#include <QLatin1StringView>

#include <brotli/decode.h>
#include <brotli/encode.h>
#include <lz4.h>
#include <snappy.h>
#include <zlib.h>
#include <zstd.h>

#include <array>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

Result<void, Error> goodIf(bool isGood)
{
    return isGood ? Result<void, Error>() : Fault{Error::BadData};
}

/// The size of compressed bytes. A library that fails reports 0.
Result<size_t, Error> compressed(size_t bytes)
{
    if (bytes == 0) {
        return Fault{Error::NoMemory};
    }
    return bytes;
}

/// The length at the start of the block is checked first: the library trusts it.
class SnappyDecompressor final : public Decompressor
{
public:
    Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) override
    {
        const auto *const bytes = reinterpret_cast<const char *>(in.data());
        size_t size = 0;
        return goodIf(
            snappy::GetUncompressedLength(bytes, in.size(), &size) && size == out.size() &&
            snappy::RawUncompress(bytes, in.size(), reinterpret_cast<char *>(out.data())));
    }
};

class SnappyCompressor final : public Compressor
{
public:
    size_t maxBytes(size_t n) const override { return snappy::MaxCompressedLength(n); }
    Result<size_t, Error> compress(std::span<const char> in, char *out) override
    {
        size_t size = 0;
        snappy::RawCompress(in.data(), in.size(), out, &size);
        return compressed(size);
    }
};

// Added to the window bits, these select the wrapper around a deflate stream.
constexpr int kEitherHeader = 32; // zlib or gzip, detected from the header
constexpr int kGzipHeader = 16;

/// Keeps its state between pages, because its allocation costs more than a small page.
class GzipDecompressor final : public Decompressor
{
public:
    // The constructor cannot fail; uncompress() reports a lack of memory as bad data.
    GzipDecompressor() { m_isOpen = inflateInit2(&m_stream, MAX_WBITS + kEitherHeader) == Z_OK; }
    ~GzipDecompressor() override
    {
        if (m_isOpen) {
            inflateEnd(&m_stream);
        }
    }
    /// A page may consist of several gzip members.
    Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) override
    {
        m_stream.next_in = const_cast<uchar *>(in.data());
        m_stream.avail_in = static_cast<uInt>(in.size());
        m_stream.next_out = out.data();
        m_stream.avail_out = static_cast<uInt>(out.size());
        bool isGood = m_isOpen;
        while (isGood && m_stream.avail_in != 0) {
            isGood = inflateReset(&m_stream) == Z_OK && inflateMember() == Z_STREAM_END;
        }
        return goodIf(isGood && m_stream.avail_out == 0);
    }

private:
    /// A member that fills the output may still have an end to read. Zlib needs room for that, so
    /// give it one more byte; a member that writes it is too long.
    int inflateMember()
    {
        const int state = inflate(&m_stream, Z_FINISH);
        if (state != Z_BUF_ERROR || m_stream.avail_out != 0) {
            return state;
        }
        uchar excess = 0;
        m_stream.next_out = &excess;
        m_stream.avail_out = 1;
        const int end = inflate(&m_stream, Z_FINISH);
        const bool isTooLong = m_stream.avail_out == 0;
        m_stream.avail_out = 0;
        return isTooLong ? Z_DATA_ERROR : end;
    }

    z_stream m_stream{};
    bool m_isOpen;
};

class GzipCompressor final : public Compressor
{
public:
    GzipCompressor()
    {
        constexpr int kMemoryLevel = 8;
        m_isOpen = deflateInit2(&m_stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED,
                                MAX_WBITS + kGzipHeader, kMemoryLevel, Z_DEFAULT_STRATEGY) == Z_OK;
    }
    ~GzipCompressor() override
    {
        if (m_isOpen) {
            deflateEnd(&m_stream);
        }
    }
    size_t maxBytes(size_t n) const override
    {
        // Not deflateBound(), whose result is smaller once a stream has ended: the room is made
        // before the stream begins again. Header and trailer of gzip are larger than those of zlib.
        constexpr size_t kGzipExcess = 18 - 6;
        return compressBound(n) + kGzipExcess;
    }
    Result<size_t, Error> compress(std::span<const char> in, char *out) override
    {
        if (!m_isOpen || deflateReset(&m_stream) != Z_OK) {
            return Fault{Error::NoMemory};
        }
        m_stream.next_in = reinterpret_cast<uchar *>(const_cast<char *>(in.data()));
        m_stream.avail_in = static_cast<uInt>(in.size());
        m_stream.next_out = reinterpret_cast<uchar *>(out);
        m_stream.avail_out = static_cast<uInt>(maxBytes(in.size()));
        return compressed(deflate(&m_stream, Z_FINISH) == Z_STREAM_END ? m_stream.total_out : 0);
    }

private:
    z_stream m_stream{};
    bool m_isOpen;
};

/// Keeps its context between pages, as the one of GZIP does.
class ZstdDecompressor final : public Decompressor
{
public:
    Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) override
    {
        // A library error is a number far above every size, so that one comparison is enough.
        return goodIf(ZSTD_decompressDCtx(m_context.get(), out.data(), out.size(), in.data(),
                                          in.size()) == out.size());
    }

private:
    struct Free
    {
        void operator()(ZSTD_DCtx *context) const { ZSTD_freeDCtx(context); }
    };
    std::unique_ptr<ZSTD_DCtx, Free> m_context{ZSTD_createDCtx()};
};

class ZstdCompressor final : public Compressor
{
public:
    size_t maxBytes(size_t n) const override { return ZSTD_compressBound(n); }
    Result<size_t, Error> compress(std::span<const char> in, char *out) override
    {
        constexpr int kLevel = 3; // the default of the library
        const size_t size = ZSTD_compressCCtx(m_context.get(), out, maxBytes(in.size()), in.data(),
                                              in.size(), kLevel);
        return compressed(ZSTD_isError(size) != 0 ? 0 : size);
    }

private:
    struct Free
    {
        void operator()(ZSTD_CCtx *context) const { ZSTD_freeCCtx(context); }
    };
    std::unique_ptr<ZSTD_CCtx, Free> m_context{ZSTD_createCCtx()};
};

class Lz4Decompressor final : public Decompressor
{
public:
    Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) override
    {
        const auto size = static_cast<int>(out.size());
        return goodIf(LZ4_decompress_safe(reinterpret_cast<const char *>(in.data()),
                                          reinterpret_cast<char *>(out.data()),
                                          static_cast<int>(in.size()), size) == size);
    }
};

class Lz4Compressor final : public Compressor
{
public:
    size_t maxBytes(size_t n) const override
    {
        return static_cast<size_t>(LZ4_compressBound(static_cast<int>(n)));
    }
    Result<size_t, Error> compress(std::span<const char> in, char *out) override
    {
        const int size = LZ4_compress_default(in.data(), out, static_cast<int>(in.size()),
                                              static_cast<int>(maxBytes(in.size())));
        return compressed(static_cast<size_t>(std::max(size, 0)));
    }
};

/// The library has no call that keeps a state between streams.
class BrotliDecompressor final : public Decompressor
{
public:
    Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) override
    {
        size_t size = out.size(); // the room, and then the number of bytes written
        return goodIf(BrotliDecoderDecompress(in.size(), in.data(), &size, out.data()) ==
                          BROTLI_DECODER_RESULT_SUCCESS &&
                      size == out.size());
    }
};

class BrotliCompressor final : public Compressor
{
public:
    size_t maxBytes(size_t n) const override { return BrotliEncoderMaxCompressedSize(n); }
    Result<size_t, Error> compress(std::span<const char> in, char *out) override
    {
        size_t size = maxBytes(in.size());
        const bool isGood = encode(in, reinterpret_cast<uchar *>(out), &size);
        return compressed(isGood ? size : 0);
    }

private:
    /// `size`: in, the room at `out`; out, the bytes that are used.
    static bool encode(std::span<const char> in, uchar *out, size_t *size)
    {
        // 0 to 11. The default of 11 is too slow for files that are written once.
        constexpr int kQuality = 4;
        const auto *const bytes = reinterpret_cast<const uchar *>(in.data());
        return BrotliEncoderCompress(kQuality, BROTLI_DEFAULT_WINDOW, BROTLI_DEFAULT_MODE,
                                     in.size(), bytes, size, out) == BROTLI_TRUE;
    }
};

} // namespace

std::unique_ptr<Decompressor> makeDecompressor(qint32 codec)
{
    switch (codec) {
    case kSnappy:
        return std::make_unique<SnappyDecompressor>();
    case kGzip:
        return std::make_unique<GzipDecompressor>();
    case kBrotli:
        return std::make_unique<BrotliDecompressor>();
    case kZstd:
        return std::make_unique<ZstdDecompressor>();
    case kLz4Raw:
        return std::make_unique<Lz4Decompressor>();
    default:
        return nullptr;
    }
}

std::unique_ptr<Compressor> makeCompressor(qint32 codec)
{
    switch (codec) {
    case kSnappy:
        return std::make_unique<SnappyCompressor>();
    case kGzip:
        return std::make_unique<GzipCompressor>();
    case kBrotli:
        return std::make_unique<BrotliCompressor>();
    case kZstd:
        return std::make_unique<ZstdCompressor>();
    case kLz4Raw:
        return std::make_unique<Lz4Compressor>();
    default:
        return nullptr;
    }
}

/// A codec that the format got later has only its number.
QString codecName(qint32 codec)
{
    constexpr std::array kNames{"UNCOMPRESSED"_L1, "SNAPPY"_L1, "GZIP"_L1, "LZO"_L1,
                                "BROTLI"_L1,       "LZ4"_L1,    "ZSTD"_L1, "LZ4_RAW"_L1};
    return codec >= 0 && codec < static_cast<qint32>(kNames.size())
               ? QString(kNames[static_cast<size_t>(codec)])
               : QString::number(codec);
}

} // namespace corvanta::parquet
