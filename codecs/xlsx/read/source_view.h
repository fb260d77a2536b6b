// A position of its own in a source that several threads read.
#pragma once
#include "base/byte_source.h"

#include <mutex>

namespace corvanta::xlsx {

/// Threads: one at a time per view; views of one source and one mutex are independent.
/// Several members of a package are read at the same time: each view remembers where its reader is,
/// and seeks before every read.
class SourceView final : public ByteSource
{
public:
    /// `source` must be able to seek. It and `mutex` outlive the view, and no other code uses the
    /// source but its views.
    SourceView(ByteSource &source, std::mutex &mutex)
        : m_source(source)
        , m_mutex(mutex)
    {
    }

    /// Waits while another view reads.
    qint64 read(void *buffer, qint64 n) override
    {
        const std::lock_guard lock(m_mutex);
        const qint64 got = m_source.seek(m_position) ? m_source.read(buffer, n) : -1;
        m_position += std::max<qint64>(got, 0);
        return got;
    }
    qint64 size() override
    {
        const std::lock_guard lock(m_mutex);
        return m_source.size();
    }
    /// Sets the position of the next read; the source itself does not move.
    bool seek(qint64 offset) override
    {
        m_position = offset;
        return offset >= 0;
    }

private:
    ByteSource &m_source; // guarded by m_mutex
    std::mutex &m_mutex;
    qint64 m_position = 0;
};

} // namespace corvanta::xlsx
