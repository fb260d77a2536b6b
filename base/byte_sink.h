// base/byte_sink.h
// Where a format's encoder puts its bytes: files, network files and memory look alike.
#pragma once
#include <QByteArray>
#include <QtGlobal>

namespace corvanta {

/// A stream of bytes that are written in order, with jumps back to complete what came earlier.
/// Threads: one at a time.
class ByteSink
{
public:
    ByteSink() = default;
    ByteSink(const ByteSink &) = delete;
    ByteSink &operator=(const ByteSink &) = delete;
    virtual ~ByteSink() = default;

    /// Write all `n` bytes at the current position; false after a failure (a full disk, say). A
    /// failed call may be repeated: the position is then where it was before the call.
    virtual bool write(const void *bytes, qint64 n) = 0;

    /// Go to an absolute offset within what was written so far; false when the sink cannot.
    virtual bool seek(qint64 offset) = 0;

    /// Absolute offset of the next write.
    virtual qint64 position() const = 0;

    /// Hand everything to the system; false after a failure.
    virtual bool flush() = 0;
};

/// Bytes in memory, for tests and small parts.
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
    const QByteArray &bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    qint64 m_position = 0;
};

} // namespace corvanta
