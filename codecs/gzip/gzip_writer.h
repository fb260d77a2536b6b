// Compresses a stream of bytes to one gzip member (RFC 1952).
//
// The bytes written depend only on the content and the level: there is no name and no time in the
// header. Threads: one at a time; worker threads compress and write, see DeflateStream.
#pragma once
#include "base/byte_sink.h"
#include "codecs/deflate/deflate_stream.h"

namespace corvanta::gzip {

/// Call write() as often as needed, then finish(). Destroying a writer discards what is not
/// written. A failed write of the sink is final here: a sink that can retry does so itself.
class Writer
{
public:
    /// `sink` must outlive the writer and get no other bytes until finish(). Writes nothing yet.
    explicit Writer(ByteSink &sink);
    /// Add `n` bytes of content. Returns false if the sink failed or there is no memory.
    bool write(const void *bytes, qint64 n);
    /// Write the rest and the trailer. Returns false as write() does. Call it once.
    bool finish();
    /// Bytes of content so far.
    qint64 size() const { return m_size; }

private:
    bool begin();

    ByteSink &m_sink;
    qint64 m_size = 0;
    bool m_hasBegun = false;
    deflate::DeflateStream m_stream; // last: its threads use the sink
};

} // namespace corvanta::gzip
