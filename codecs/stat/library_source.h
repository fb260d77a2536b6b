// Gives the library the bytes of a ByteSource through its input handlers.
//
// The library reads many small pieces and jumps between them. The buffer here is filled with few
// bytes after a jump, and with more and more while the reads are in order.
#pragma once
#include "base/byte_source.h"

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <atomic>
#include <memory>

struct readstat_parser_s;

namespace corvanta::stat {

/// Threads: one at a time; fractionRead() from any.
class LibrarySource
{
public:
    /// `source` must be able to seek at no cost and know its size, and outlive this object.
    explicit LibrarySource(ByteSource &source);

    /// Make `parser` read this source, which must outlive it.
    void attachTo(readstat_parser_s *parser);
    /// The file begins with these bytes instead of its own.
    void setStart(QByteArray bytes) { m_start = std::move(bytes); }
    /// Continue at `to` after a read that ends at `from`.
    void hide(qint64 from, qint64 to);
    /// The bytes of the last read, where the reader has them.
    QByteArrayView lastRead() const { return m_lastRead; }

    /// Move to an offset from the beginning. False for one before it.
    bool seekTo(qint64 offset) { return seek(offset, 0) >= 0; }
    /// Returns fewer than `n` bytes only at the end of the file, and -1 after a failure.
    qint64 read(char *out, qint64 n);

    /// Whether a read of the source has failed.
    bool hasFailed() const { return m_hasFailed; }
    /// Whether the last read beyond the end of the file was inside a structure of it: it got some
    /// bytes, or wanted more than a length.
    bool endsInside() const { return m_endsInside; }
    /// The position in the file, from 0 to 1.
    float fractionRead() const;

private:
    /// As lseek() of POSIX; `whence` is a readstat_io_flags_t.
    qint64 seek(qint64 offset, int whence);
    qint64 fill();

    static constexpr qint64 kSmallestFill = qint64(4) * 1024;
    static constexpr qint64 kLargestFill = qint64(256) * 1024;

    ByteSource &m_source;
    const qint64 m_size;
    std::atomic<qint64> m_position = 0;
    std::unique_ptr<char[]> m_buffer;
    // The buffer holds m_filled bytes, the first of which is at m_bufferAt in the file.
    qint64 m_bufferAt = 0;
    qint64 m_filled = 0;
    qint64 m_nextFill = kSmallestFill; // bytes
    qint64 m_hiddenFrom = -1;          // -1: nothing is hidden
    qint64 m_hiddenTo = -1;
    QByteArray m_start; // empty: that of the source
    QByteArrayView m_lastRead;
    bool m_endsInside = false;
    bool m_hasFailed = false;
};

} // namespace corvanta::stat
