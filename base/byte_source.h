// base/byte_source.h
// Where a format's decoder gets its bytes: files, package members and memory look alike.
#pragma once
#include <QByteArrayView>
#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace corvanta {

/// A forward stream of bytes, with optional random access.
/// Threads: one at a time.
class ByteSource
{
public:
    ByteSource() = default;
    ByteSource(const ByteSource &) = delete;
    ByteSource &operator=(const ByteSource &) = delete;
    virtual ~ByteSource() = default;

    /// Read up to `n` bytes: the count read, 0 at the end, negative after a failure.
    /// Fewer than `n` bytes do not mean the end.
    virtual qint64 read(void *buffer, qint64 n) = 0;

    /// Bytes in all, or -1 when not known.
    virtual qint64 size() = 0;

    /// Go to an absolute offset; false when the source cannot or the offset is out of range.
    virtual bool seek(qint64 offset) = 0;
};

/// Read and drop `n` bytes. Returns false if the source ends before, or after a failure.
bool skipBytes(ByteSource &source, qint64 n);

/// Read until `n` bytes are there or the source ends; negative after a failure.
inline qint64 readFully(ByteSource &source, void *buffer, qint64 n)
{
    qint64 done = 0;
    while (done < n) {
        const qint64 got = source.read(static_cast<char *>(buffer) + done, n - done);
        if (got < 0) {
            return got;
        }
        if (got == 0) {
            break;
        }
        done += got;
    }
    return done;
}

/// Bytes in memory. The memory must outlive the source. `pieceBytes` caps one read, for tests of
/// decoders that must not care how the bytes arrive.
class MemorySource final : public ByteSource
{
public:
    explicit MemorySource(QByteArrayView bytes, qint64 pieceBytes = -1)
        : m_bytes(bytes)
        , m_pieceBytes(pieceBytes)
    {
    }

    qint64 read(void *buffer, qint64 n) override
    {
        qint64 take = std::min<qint64>(n, m_bytes.size() - m_position);
        if (m_pieceBytes > 0) {
            take = std::min(take, m_pieceBytes);
        }
        if (take > 0) {
            std::memcpy(buffer, m_bytes.data() + m_position, static_cast<size_t>(take));
            m_position += take;
        }
        return std::max<qint64>(take, 0);
    }
    qint64 size() override { return m_bytes.size(); }
    bool seek(qint64 offset) override
    {
        if (offset < 0 || offset > m_bytes.size()) {
            return false;
        }
        m_position = offset;
        return true;
    }

private:
    QByteArrayView m_bytes;
    qint64 m_pieceBytes;
    qint64 m_position = 0;
};

} // namespace corvanta
