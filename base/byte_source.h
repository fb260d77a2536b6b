// The origin of a decoder's bytes. Files, package members and memory share this interface.
#pragma once
#include <QByteArrayView>
#include <QtGlobal>

#include <algorithm>
#include <cstring>

namespace corvanta {

/// A forward stream of bytes, with optional random access. Offsets and sizes are in bytes.
/// Threads: one thread at a time per object.
class ByteSource
{
public:
    ByteSource() = default;
    ByteSource(const ByteSource &) = delete;
    ByteSource &operator=(const ByteSource &) = delete;
    virtual ~ByteSource() = default;

    /// Read up to `n` bytes. Returns the number of bytes read, 0 at the end of the stream, and a
    /// negative number after a failure. Fewer than `n` bytes do not mean the end.
    ///
    /// After a failure the position is undefined, unless a source says otherwise.
    ///
    /// A number and not a Result because decoders call it in their inner loops. A source that knows
    /// the reason of a failure offers it in a function of its own.
    virtual qint64 read(void *buffer, qint64 n) = 0;

    /// Total number of bytes in the stream, or -1 if unknown. Does not depend on the position. For
    /// a decompressed stream the size may be a claim of its header: check it before allocating.
    virtual qint64 size() = 0;

    /// Move to an absolute offset, from 0 to the size (both included). Returns false if the source
    /// cannot seek or the offset is out of range.
    virtual bool seek(qint64 offset) = 0;
};

/// Read and discard `n` bytes, also in sources that cannot seek. Returns false if the source ends
/// before that or fails. Returns true for `n` <= 0.
bool skipBytes(ByteSource &source, qint64 n);

/// Read until `n` bytes have arrived or the source ends. Returns the number of bytes, or a negative
/// number after a failure. Fewer than `n` bytes therefore mean the end of the source.
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

/// Reads bytes in memory, which must outlive the source. Never fails, and knows its size. A read at
/// the end returns 0, as often as it is repeated.
class MemorySource final : public ByteSource
{
public:
    /// `pieceBytes` limits the size of one read; -1 is no limit. Tests use it to check that the
    /// result of a decoder does not depend on how the bytes arrive. size() and seek() ignore it.
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
    // Of a read; -1: no limit.
    qint64 m_pieceBytes;
    qint64 m_position = 0;
};

} // namespace corvanta
