// codecs/parquet/shared_file.h
// One file that several column readers read from.
#pragma once
#include "base/byte_source.h"

#include <mutex>

namespace corvanta::parquet {

/// Threads: any; one read at a time.
class SharedFile
{
public:
    /// `source` must outlive this object and be used by nobody else meanwhile.
    explicit SharedFile(ByteSource &source)
        : m_source(source)
        , m_size(source.size())
    {
    }
    qint64 size() const { return m_size; }

    /// Read up to `n` bytes at `offset`: the count read, fewer only at the end; negative after a
    /// failure.
    qint64 readAt(qint64 offset, void *buffer, qint64 n)
    {
        const std::lock_guard lock(m_mutex);
        return m_source.seek(offset) ? readFully(m_source, buffer, n) : -1;
    }

private:
    std::mutex m_mutex;
    ByteSource &m_source; // guarded by m_mutex
    const qint64 m_size;
};

} // namespace corvanta::parquet
