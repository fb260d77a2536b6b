// The destination of an encoder's bytes. Files, network files and memory share this interface.
#pragma once
#include <QByteArray>
#include <QtGlobal>

namespace corvanta {

/// A stream of bytes that are written in order. Seeking back allows an encoder to complete earlier
/// bytes, such as the sizes in a header. Writing after a seek back replaces bytes; it never inserts
/// or truncates. Offsets and sizes are in bytes.
/// Threads: one thread at a time per object.
class ByteSink
{
public:
    ByteSink() = default;
    ByteSink(const ByteSink &) = delete;
    ByteSink &operator=(const ByteSink &) = delete;
    virtual ~ByteSink() = default;

    /// Write all `n` bytes at the current position. Returns false after a failure, for example on a
    /// full disk. The position is then the one before the call, so that the caller may repeat it.
    /// A plain bool because the sink has no detail to add, and its callers name the failed file.
    virtual bool write(const void *bytes, qint64 n) = 0;

    /// Move to an absolute offset within the bytes written so far. Returns false if the sink cannot
    /// seek or the offset is out of range.
    virtual bool seek(qint64 offset) = 0;

    /// Absolute offset of the next write, in bytes.
    virtual qint64 position() const = 0;

    /// Hand all bytes to the system. Does not wait until they are on the device. Returns false
    /// after a failure; the call may then be repeated.
    virtual bool flush() = 0;
};

/// Keeps the bytes in memory, for tests and small parts. Never fails, except that a lack of memory
/// throws std::bad_alloc.
class MemorySink final : public ByteSink
{
public:
    bool write(const void *bytes, qint64 n) override
    {
        const qint64 inside = qMin(n, m_bytes.size() - m_position);
        m_bytes.replace(m_position, inside, static_cast<const char *>(bytes), n);
        m_position += n;
        return true;
    }
    bool seek(qint64 offset) override
    {
        const bool inside = offset >= 0 && offset <= m_bytes.size();
        m_position = inside ? offset : m_position;
        return inside;
    }
    qint64 position() const override { return m_position; }
    bool flush() override { return true; }
    /// All bytes written so far, whatever the position. Later writes change the referenced array.
    const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    qint64 m_position = 0;
};

} // namespace corvanta
