// Splits the stream of a legacy workbook into its records.
#pragma once
#include "base/byte_source.h"

#include <optional>
#include <vector>

namespace corvanta::xls {

/// One record. Its bytes are valid until the reader's next call.
struct Record
{
    quint16 id = 0;
    const uchar *data = nullptr;
    qint64 bytes = 0;
    qint64 offset = 0; ///< of its header in the stream
};

/// Reads records through a buffer. Threads: one at a time.
class RecordReader
{
public:
    /// Why there is no next record.
    enum class Stop : quint8 {
        None,       ///< there is one
        End,        ///< the stream ends after a record
        Truncated,  ///< the stream ends inside a record
        ReadFailed, ///< the source failed
    };

    /// `source` can seek and must outlive the reader.
    explicit RecordReader(ByteSource &source);

    /// Continue at an offset in the stream, from 0 to its size; beyond it there are no records.
    void seek(qint64 offset);
    /// Offset of the next record.
    qint64 position() const { return m_bufferOffset + static_cast<qint64>(m_at); }
    /// Size of the stream in bytes.
    qint64 size() const { return m_size; }

    /// Read the next record. Returns false when there is none; see stop().
    bool next(Record *record);
    /// The number of the next record, or std::nullopt at the end. Does not move, but the bytes of
    /// the record that was read last are no longer valid.
    std::optional<quint16> nextId();
    Stop stop() const { return m_stop; }

    /// Keep the bytes from `begin` to `end` in memory until the next load(), so that seek() between
    /// them costs nothing. Returns false when they cannot be read.
    bool load(qint64 begin, qint64 end);

private:
    /// Have `n` bytes in the buffer, starting at the next record. Returns false if there are fewer.
    bool ensure(size_t n);
    bool refill();
    /// Continue without any bytes in the buffer.
    void emptyAt(qint64 offset);
    /// Move the bytes that are not read yet to the beginning of the buffer.
    void dropRead();

    ByteSource &m_source;
    qint64 m_size = 0;
    std::vector<uchar> m_buffer;
    qint64 m_bufferOffset = 0; // of the first byte in m_buffer
    size_t m_at = 0;           // the next record in m_buffer
    size_t m_filled = 0;
    Stop m_stop = Stop::None;
};

} // namespace corvanta::xls
