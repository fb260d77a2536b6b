// codecs/parquet/codec.h
// Compression of pages.
#pragma once
#include "codecs/parquet/metadata/records.h"

#include <QString>

#include <memory>
#include <span>
#include <vector>

namespace corvanta::parquet {

/// Uncompresses pages of one codec. Threads: one at a time; objects share nothing.
class Decompressor
{
public:
    Decompressor() = default;
    Decompressor(const Decompressor &) = delete;
    Decompressor &operator=(const Decompressor &) = delete;
    virtual ~Decompressor() = default;
    /// Fill `out`; false unless `in` gives exactly as many bytes.
    virtual bool uncompress(std::span<const uchar> in, std::span<uchar> out) = 0;
};

/// Compresses pages of one codec. Threads: one at a time; objects share nothing.
class Compressor
{
public:
    Compressor() = default;
    Compressor(const Compressor &) = delete;
    Compressor &operator=(const Compressor &) = delete;
    virtual ~Compressor() = default;
    /// The most bytes that `n` bytes can become.
    virtual size_t maxBytes(size_t n) const = 0;
    /// Compress into `out`, of maxBytes(in.size()) bytes; the bytes used, 0 after a failure.
    virtual size_t compress(std::span<const char> in, char *out) = 0;
};

/// Null for UNCOMPRESSED and for codecs that are not known.
std::unique_ptr<Decompressor> makeDecompressor(qint32 codec);
std::unique_ptr<Compressor> makeCompressor(qint32 codec);

/// "SNAPPY", "ZSTD", ...; the number for an unknown one.
QString codecName(qint32 codec);

} // namespace corvanta::parquet
