// One file that several column readers share.
#pragma once
#include "base/byte_source.h"

#include <mutex>

namespace corvanta::parquet {

/// Serializes reads at any offset of a ByteSource: seek and read are one step under a lock.
/// Decoding runs outside the lock, so that the readers work in parallel. Threads: any number; one
/// read at a time.
class SharedFile
{
public:
    /// `source` must be able to seek and outlive this object, which must be its only user.
    explicit SharedFile(ByteSource &source)
        : m_source(source)
        , m_size(source.size())
    {
    }
    /// Size in bytes, as it was when the object was created.
    qint64 size() const { return m_size; }

    /// Read `n` bytes at `offset`. Returns the number of bytes, which is smaller only at the end of
    /// the file, and a negative number after a failure, like ByteSource::read().
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
