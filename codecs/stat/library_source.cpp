// The buffer, and how it follows the reads of the library:
//
//   file     ... | m_bufferAt ... m_position ... m_bufferAt + m_filled | ...
//
// A read inside the buffer is a copy. One directly after it fills the buffer with twice as many
// bytes as before; any other one is a jump, and begins again with few.
#include "codecs/stat/library_source.h"

#include <readstat.h>

#include <algorithm>
#include <cstring>

namespace corvanta::stat {

LibrarySource::LibrarySource(ByteSource &source)
    : m_source(source)
    , m_size(source.size())
    , m_buffer(new char[kLargestFill])
{
}

void LibrarySource::attachTo(readstat_parser_s *parser)
{
    readstat_set_open_handler(parser, [](const char *, void *) noexcept { return 0; });
    readstat_set_close_handler(parser, [](void *) noexcept { return 0; });
    readstat_set_seek_handler(parser,
                              [](readstat_off_t offset, readstat_io_flags_t whence,
                                 void *self) noexcept -> readstat_off_t {
                                  return static_cast<LibrarySource *>(self)->seek(offset, whence);
                              });
    readstat_set_read_handler(parser, [](void *out, size_t n, void *self) noexcept -> ssize_t {
        return static_cast<LibrarySource *>(self)->read(static_cast<char *>(out),
                                                        static_cast<qint64>(n));
    });
    // The default would use the argument as a file of its own.
    readstat_set_update_handler(parser, [](long, readstat_progress_handler, void *,
                                           void *) noexcept { return READSTAT_OK; });
    readstat_set_io_ctx(parser, this);
}

void LibrarySource::hide(qint64 from, qint64 to)
{
    m_hiddenFrom = from;
    m_hiddenTo = to;
}

float LibrarySource::fractionRead() const
{
    const qint64 at = m_position.load(std::memory_order_relaxed);
    return m_size <= 0 ? 0.0F : std::min(1.0F, static_cast<float>(at) / static_cast<float>(m_size));
}

/// Returns the new position, or -1 for one before the file.
qint64 LibrarySource::seek(qint64 offset, int whence)
{
    qint64 from = 0;
    if (whence == READSTAT_SEEK_CUR) {
        from = m_position;
    } else if (whence == READSTAT_SEEK_END) {
        from = m_size;
    }
    qint64 to = 0;
    if (__builtin_add_overflow(from, offset, &to) || to < 0) {
        return -1;
    }
    m_position = to;
    return to;
}

qint64 LibrarySource::read(char *out, qint64 n)
{
    constexpr qint64 kLengthBytes = 4;
    if (m_position == m_hiddenFrom) {
        m_position = m_hiddenTo;
    }
    m_lastRead = QByteArrayView(out, n);
    qint64 done = 0;
    while (done < n) {
        const qint64 offset = m_position - m_bufferAt;
        if (offset < 0 || offset >= m_filled) {
            const qint64 got = fill();
            if (got <= 0) {
                m_endsInside = done > 0 || n > kLengthBytes;
                return got < 0 ? got : done;
            }
            continue;
        }
        const qint64 take = std::min(n - done, m_filled - offset);
        std::memcpy(out + done, m_buffer.get() + offset, static_cast<size_t>(take));
        done += take;
        m_position += take;
    }
    return done;
}

/// Read the bytes at the position. Returns their number.
qint64 LibrarySource::fill()
{
    const qint64 at = m_position;
    const bool isInOrder = at == m_bufferAt + m_filled;
    m_nextFill = isInOrder ? std::min(m_nextFill * 2, kLargestFill) : kSmallestFill;
    m_filled = 0;
    m_bufferAt = at;
    if (at >= m_size) {
        return 0;
    }
    // Always: another object may have moved the source.
    if (!m_source.seek(at)) {
        m_hasFailed = true;
        return -1;
    }
    const qint64 got = m_source.read(m_buffer.get(), m_nextFill);
    m_hasFailed = got < 0;
    m_filled = std::max<qint64>(got, 0);
    const qint64 replaced = std::min(m_filled, m_start.size() - at);
    if (replaced > 0) {
        std::memcpy(m_buffer.get(), m_start.constData() + at, static_cast<size_t>(replaced));
    }
    return got;
}

} // namespace corvanta::stat
