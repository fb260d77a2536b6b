// Compresses and uncompresses pages, one class per codec.
//
// Pages are complete in memory and at most limits::kParquetPageBytes long when read, so that every
// size fits the 32 bits of the libraries.
#pragma once
#include "codecs/parquet/metadata/records.h"

#include <QString>

#include <memory>
#include <span>
#include <vector>

namespace corvanta::parquet {

/// Uncompresses pages of one codec. Threads: one thread at a time per object; separate objects are
/// independent.
class Decompressor
{
public:
    Decompressor() = default;
    Decompressor(const Decompressor &) = delete;
    Decompressor &operator=(const Decompressor &) = delete;
    virtual ~Decompressor() = default;
    /// Fill `out`. Errors: BadData, without a detail, unless `in` contains exactly out.size()
    /// bytes. `out` may be partly written after a fault. The object can be used again.
    virtual Result<void, Error> uncompress(std::span<const uchar> in, std::span<uchar> out) = 0;
};

/// Compresses pages of one codec. Threads: one thread at a time per object; separate objects are
/// independent.
class Compressor
{
public:
    Compressor() = default;
    Compressor(const Compressor &) = delete;
    Compressor &operator=(const Compressor &) = delete;
    virtual ~Compressor() = default;
    /// The maximum size in bytes of `n` compressed bytes.
    virtual size_t maxBytes(size_t n) const = 0;
    /// Compress `in` into `out`, which has room for maxBytes(in.size()) bytes. Returns the size of
    /// the result, which is never 0. Errors: NoMemory, without a detail, if the library fails.
    virtual Result<size_t, Error> compress(std::span<const char> in, char *out) = 0;
};

/// `codec` is a CodecNumber. Return null for kUncompressed and for unknown codecs.
std::unique_ptr<Decompressor> makeDecompressor(qint32 codec);
std::unique_ptr<Compressor> makeCompressor(qint32 codec);

/// The name of a codec in parquet.thrift, such as "SNAPPY" or "ZSTD"; the number for an unknown
/// one.
QString codecName(qint32 codec);

} // namespace corvanta::parquet
