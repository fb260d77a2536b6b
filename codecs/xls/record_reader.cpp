// A record (MS-XLS, 2.1.4; little-endian) is the number of its type 2, the length of its data 2,
// and the data. Up to BIFF 5 the data has at most 2,080 bytes, in BIFF 8 8,224; longer data
// continues in CONTINUE records.
#include "codecs/xls/record_reader.h"

#include "base/bytes.h"

#include <algorithm>
#include <cstring>

namespace corvanta::xls {

namespace {

constexpr size_t kRecordHeaderBytes = 4;
constexpr size_t kBufferBytes = size_t(128) * 1024; // more than a record can have

} // namespace

RecordReader::RecordReader(ByteSource &source)
    : m_source(source)
    , m_size(std::max<qint64>(0, source.size()))
    , m_buffer(kBufferBytes)
{
}

void RecordReader::seek(qint64 offset)
{
    m_stop = Stop::None;
    if (offset >= m_bufferOffset && offset <= m_bufferOffset + static_cast<qint64>(m_filled)) {
        m_at = static_cast<size_t>(offset - m_bufferOffset);
        return;
    }
    emptyAt(std::clamp<qint64>(offset, 0, m_size));
}

void RecordReader::emptyAt(qint64 offset)
{
    m_bufferOffset = offset;
    m_at = 0;
    m_filled = 0;
}

void RecordReader::dropRead()
{
    std::memmove(m_buffer.data(), m_buffer.data() + m_at, m_filled - m_at);
    m_bufferOffset += static_cast<qint64>(m_at);
    m_filled -= m_at;
    m_at = 0;
}

/// Read as much as the buffer takes, after the bytes that are still needed. False at the end and
/// after a failure.
bool RecordReader::refill()
{
    dropRead();
    const qint64 from = m_bufferOffset + static_cast<qint64>(m_filled);
    if (!m_source.seek(from)) {
        m_stop = Stop::ReadFailed;
        return false;
    }
    const qint64 got = readFully(m_source, m_buffer.data() + m_filled,
                                 static_cast<qint64>(m_buffer.size() - m_filled));
    if (got < 0) {
        m_stop = Stop::ReadFailed;
        return false;
    }
    m_filled += static_cast<size_t>(got);
    return got > 0;
}

bool RecordReader::ensure(size_t n)
{
    return m_filled - m_at >= n || (refill() && m_filled - m_at >= n);
}

bool RecordReader::next(Record *record)
{
    if (!ensure(kRecordHeaderBytes)) {
        if (m_stop == Stop::None) {
            m_stop = m_filled == m_at ? Stop::End : Stop::Truncated;
        }
        return false;
    }
    const size_t bytes = loadLE<quint16>(m_buffer.data() + m_at + 2);
    if (!ensure(kRecordHeaderBytes + bytes)) {
        m_stop = m_stop == Stop::None ? Stop::Truncated : m_stop;
        return false;
    }
    const uchar *const header = m_buffer.data() + m_at;
    *record = {loadLE<quint16>(header), header + kRecordHeaderBytes, static_cast<qint64>(bytes),
               position()};
    m_at += kRecordHeaderBytes + bytes;
    return true;
}

std::optional<quint16> RecordReader::nextId()
{
    if (!ensure(kRecordHeaderBytes)) {
        return std::nullopt;
    }
    return loadLE<quint16>(m_buffer.data() + m_at);
}

/// The buffer grows to the range and stays so large: sheets that need it are rare.
bool RecordReader::load(qint64 begin, qint64 end)
{
    m_buffer.resize(std::max(kBufferBytes, static_cast<size_t>(end - begin)));
    emptyAt(begin);
    return ensure(static_cast<size_t>(end - begin));
}

} // namespace corvanta::xls
