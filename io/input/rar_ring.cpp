// m_ring when its m_count unread bytes wrap:
//
//     0               m_writeAt      m_readAt            size
//     | unread, newer | free         | unread, older     |
//
#include "io/input/rar_ring.h"

#include <algorithm>
#include <cassert>

namespace corvanta::input {

RarRing::RarRing(size_t ringBytes, size_t highWater)
    : m_ring(ringBytes)
    , m_highWater(highWater)
{
    // Otherwise a full ring would neither have room nor make the producer wait.
    assert(highWater < ringBytes);
}

/// Up to the end of the memory; the caller continues at its beginning.
size_t RarRing::copyIn(std::span<const char> bytes)
{
    const size_t n = std::min({bytes.size(), m_ring.size() - m_count, m_ring.size() - m_writeAt});
    std::copy_n(bytes.begin(), n, m_ring.begin() + static_cast<qint64>(m_writeAt));
    m_writeAt = (m_writeAt + n) % m_ring.size();
    m_count += n;
    return n;
}

size_t RarRing::copyOut(char *out, size_t n)
{
    const size_t take = std::min({n, m_count, m_ring.size() - m_readAt});
    std::copy_n(m_ring.begin() + static_cast<qint64>(m_readAt), take, out);
    m_readAt = (m_readAt + take) % m_ring.size();
    m_count -= take;
    return take;
}

bool RarRing::put(std::span<const char> bytes)
{
    while (!bytes.empty()) {
        // The lock is released between pieces, so that the consumer copies in parallel with the
        // unpacker.
        std::unique_lock lock(m_mutex);
        m_roomAvailable.wait(lock, [this] { return m_isAborted || m_count <= m_highWater; });
        if (m_isAborted) {
            return false;
        }
        bytes = bytes.subspan(copyIn(bytes));
        m_dataAvailable.notify_one();
    }
    return true;
}

void RarRing::finish(Outcome outcome)
{
    const std::lock_guard lock(m_mutex);
    m_isFinished = true;
    m_outcome = std::move(outcome);
    m_dataAvailable.notify_one();
}

qint64 RarRing::take(char *out, qint64 n)
{
    qint64 done = 0;
    while (done < n) {
        std::unique_lock lock(m_mutex);
        m_dataAvailable.wait(lock, [this] { return m_isAborted || m_isFinished || m_count > 0; });
        // Bytes that arrived before finish() are still delivered.
        if (m_isAborted || m_count == 0) {
            break;
        }
        done += static_cast<qint64>(copyOut(out + done, static_cast<size_t>(n - done)));
        // Earlier, the producer would wake up and wait again.
        if (m_count <= m_highWater) {
            m_roomAvailable.notify_one();
        }
    }
    return done;
}

RarRing::Outcome RarRing::outcome()
{
    const std::lock_guard lock(m_mutex);
    return m_outcome;
}

void RarRing::abort()
{
    const std::lock_guard lock(m_mutex);
    m_isAborted = true;
    m_dataAvailable.notify_all();
    m_roomAvailable.notify_all();
}

} // namespace corvanta::input
