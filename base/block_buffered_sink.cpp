// The region is a list of blocks of equal size, the first of which starts at m_regionStart. At
// least one block is always allocated.
#include "base/block_buffered_sink.h"

#include <algorithm>
#include <cstring>
#include <new>

namespace corvanta {

BlockBufferedSink::BlockBufferedSink(ByteSink &target)
    : m_target(target)
    , m_regionStart(m_target.position())
    , m_regionEnd(m_regionStart)
    , m_position(m_regionStart)
{
    m_blocks.push_back(std::make_unique<char[]>(kBlockBytes));
}

qint64 BlockBufferedSink::allocatedEnd() const
{
    return m_regionStart + static_cast<qint64>(m_blocks.size()) * kBlockBytes;
}

bool BlockBufferedSink::allocateUntil(qint64 end)
{
    try {
        while (allocatedEnd() < end) {
            m_blocks.push_back(std::make_unique<char[]>(kBlockBytes));
        }
    } catch (const std::bad_alloc &) {
        return false;
    }
    return true;
}

bool BlockBufferedSink::write(const void *bytes, qint64 n)
{
    // The position is before the region only after a seek back and a failed flush. That flush must
    // be repeated first.
    if (m_position < m_regionStart || !allocateUntil(m_position + n)) {
        return false;
    }
    const char *from = static_cast<const char *>(bytes);
    for (qint64 left = n; left > 0;) {
        // A write may span several blocks, and start in the middle of one after a seek.
        const qint64 at = m_position - m_regionStart;
        const qint64 piece = std::min(left, kBlockBytes - at % kBlockBytes);
        char *block = m_blocks[static_cast<size_t>(at / kBlockBytes)].get();
        std::memcpy(block + at % kBlockBytes, from, static_cast<size_t>(piece));
        from += piece;
        left -= piece;
        m_position += piece;
    }
    m_regionEnd = std::max(m_regionEnd, m_position);
    return true;
}

bool BlockBufferedSink::seek(qint64 offset)
{
    // The end of a full block is a valid position, although the next block is not allocated yet.
    const qint64 last = std::max(m_regionEnd, allocatedEnd() - 1);
    const bool isInside = offset >= m_regionStart && offset <= last;
    m_position = isInside ? offset : m_position;
    return isInside;
}

bool BlockBufferedSink::flush()
{
    while (m_regionStart < m_regionEnd) {
        const qint64 bytes = std::min(kBlockBytes, m_regionEnd - m_regionStart);
        // A block is removed only after its write. A repeated call starts with the failed block.
        if (!m_target.write(m_blocks.front().get(), bytes)) {
            return false;
        }
        m_regionStart += bytes;
        if (m_blocks.size() > 1) {
            m_blocks.pop_front();
        } else { // keep one block, cleared: bytes that a seek forward leaves out are zeros
            std::memset(m_blocks.front().get(), 0, static_cast<size_t>(bytes));
        }
    }
    // After a seek back, the target has to continue at the same place.
    if (m_position != m_regionEnd && !m_target.seek(m_position)) {
        return false;
    }
    m_regionStart = m_position;
    m_regionEnd = m_position;
    return m_target.flush();
}

} // namespace corvanta
