// codecs/deflate/inflater.h
// Decompress a raw deflate stream (RFC 1951) piece by piece.
#pragma once
#include <QtGlobal>

#include <memory>
#include <span>

namespace corvanta::deflate {

/// Threads: one at a time; objects share nothing.
class Inflater
{
public:
    enum class State : quint8 {
        More, ///< the stream goes on: give more input or more room
        End,  ///< the stream's last byte is out
        Bad,  ///< no deflate stream
    };
    struct Step
    {
        State state;
        /// Bytes taken from the input. At the end it may be down to -7: an engine looks ahead, and
        /// what is not of the stream counts as never taken, even when an earlier call gave it.
        qint64 consumed;
        size_t produced; ///< bytes put into the output
    };

    Inflater() = default;
    Inflater(const Inflater &) = delete;
    Inflater &operator=(const Inflater &) = delete;
    virtual ~Inflater() = default;

    /// Decompress as much of `input` as fits into `output`. No progress with both of them there
    /// does not happen: such a stream is Bad.
    virtual Step inflate(std::span<const char> input, std::span<char> output) = 0;

    /// Be ready for a new stream.
    virtual void reset() = 0;
};

/// The fastest inflater of the build.
std::unique_ptr<Inflater> makeInflater();
/// zlib's inflater, which every build has.
std::unique_ptr<Inflater> makeZlibInflater();

} // namespace corvanta::deflate
