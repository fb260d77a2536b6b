// Reads the numbers and bytes that header checks examine.
//
// The checks read a file before the library does, because the library allocates what sizes in the
// header claim.
#pragma once
#include "base/byte_source.h"

#include <QByteArray>
#include <QtEndian>

namespace corvanta::stat {

/// After the first failure every read gives zeros, so that a check needs to test only once per
/// record. Threads: one at a time.
class CheckedReader
{
public:
    /// Reads `source` from its beginning.
    explicit CheckedReader(ByteSource &source)
        : m_source(source)
        , m_size(source.size())
        , m_isGood(source.seek(0))
    {
    }

    /// All later numbers are big-endian.
    void setBigEndian(bool on) { m_isBigEndian = on; }
    /// False after a read or skip beyond the end, or a failed read.
    bool isGood() const { return m_isGood; }
    /// Whether the source failed; false at its end.
    bool hasFailed() const { return m_hasFailed; }
    // In bytes from the beginning, and to the end.
    qint64 position() const { return m_position; }
    qint64 remaining() const { return m_size - m_position; }

    /// An integer of the type `T` in the file's byte order.
    template <class T> T number()
    {
        T value{};
        read(&value, sizeof value);
        return m_isBigEndian ? qFromBigEndian(value) : qFromLittleEndian(value);
    }
    /// `n` bytes, which must not exceed a few megabytes; empty if there are fewer.
    QByteArray bytes(qint64 n);
    /// Move to an offset from the beginning.
    void seek(qint64 offset);
    void skip(qint64 n) { seek(n < 0 ? -1 : m_position + n); }

private:
    /// Read `n` bytes; zeros after a failure.
    void read(void *out, qint64 n);

    ByteSource &m_source;
    const qint64 m_size;
    qint64 m_position = 0;
    bool m_isGood;
    bool m_hasFailed = false;
    bool m_isBigEndian = false;
};

} // namespace corvanta::stat
