// Decompresses a raw deflate stream (RFC 1951) in pieces of any size.
#pragma once
#include <QtGlobal>

#include <memory>
#include <span>

namespace corvanta::deflate {

/// Threads: one thread at a time per object; separate objects are independent.
class Inflater
{
public:
    enum class State : quint8 {
        More, ///< The stream continues; it needs more input or more room for output.
        End,  ///< The last byte of the stream has been produced.
        Bad,  ///< The input is not a deflate stream.
    };
    /// The result of one call. A state and not a Result because the call is the inner loop of every
    /// unpacker, and a damaged stream is its only failure.
    struct Step
    {
        State state;
        /// Number of input bytes consumed. At the end it may be as low as -7: a library reads
        /// ahead, and bytes after the stream count as not consumed, even if an earlier call passed
        /// them.
        qint64 consumed;
        size_t produced; ///< Number of bytes written to the output.
    };

    Inflater() = default;
    Inflater(const Inflater &) = delete;
    Inflater &operator=(const Inflater &) = delete;
    virtual ~Inflater() = default;

    /// Decompress as much of `input` as fits into `output`. If neither is empty, the call makes
    /// progress or returns Bad.
    virtual Step inflate(std::span<const char> input, std::span<char> output) = 0;

    /// Start a new stream.
    virtual void reset() = 0;
};

/// Create the fastest inflater of the build.
std::unique_ptr<Inflater> makeInflater();
/// Create zlib's inflater, which every build has.
std::unique_ptr<Inflater> makeZlibInflater();

} // namespace corvanta::deflate
