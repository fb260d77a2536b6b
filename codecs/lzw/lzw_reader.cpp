// The .Z format (POSIX.1-2024, compress utility; LZW: Welch, IEEE Computer 17(6), 1984):
//
//   offset  bytes  content
//        0      2  1F 9D
//        2      1  bit 7: block mode (code 256 clears the table); bits 5 and 6: 0; bits 0 to 4:
//                  maximum code width, 9 to 16
//        3         codes, least significant bit first, in groups of eight codes of the same width
//
// Codes 0 to 255 are the bytes. Each code after the first defines the next free code: the previous
// string and the first byte of the new one. The width starts at 9 bits and grows when the next free
// code needs more bits. If the width changes or the table is cleared, the rest of the group is
// padding.
#include "codecs/lzw/lzw_reader.h"

#include "base/bytes.h"

#include <algorithm>
#include <cstring>

namespace corvanta::lzw {

namespace {

constexpr int kHeaderBytes = 3;
constexpr uchar kMagic[] = {0x1F, 0x9D};
constexpr int kReservedFlags = 0x60;
constexpr int kBlockFlag = 0x80;
constexpr int kWidthMask = 0x1F;
constexpr int kMinWidth = 9;
constexpr int kMaxWidth = 16;
constexpr int kClearCode = 256;
constexpr size_t kInputBytes = size_t(64) * 1024;

} // namespace

Result<std::unique_ptr<Reader>, Error> Reader::open(ByteSource &source)
{
    uchar header[kHeaderBytes];
    const qint64 got = readFully(source, header, kHeaderBytes);
    if (got < 0) {
        return Fault<Error>{Error::Unreadable, QStringLiteral("it cannot be read"), 0};
    }
    if (got < kHeaderBytes || std::memcmp(header, kMagic, sizeof kMagic) != 0) {
        return Fault<Error>{Error::BadHeader, QStringLiteral("it does not start like a .Z file"),
                            0};
    }
    const int width = header[2] & kWidthMask;
    if ((header[2] & kReservedFlags) != 0 || width < kMinWidth || width > kMaxWidth) {
        return Fault<Error>{Error::BadHeader, QStringLiteral("its .Z variant is not known"), 2};
    }
    return std::unique_ptr<Reader>(new Reader(source, width, (header[2] & kBlockFlag) != 0));
}

Reader::Reader(ByteSource &source, int maxWidth, bool blockMode)
    : m_source(source)
    , m_maxWidth(maxWidth)
    , m_blockMode(blockMode)
    , m_consumed(kHeaderBytes)
    , m_prefix(kTableSize)
    , m_last(kTableSize)
    , m_first(kTableSize)
    , m_length(kTableSize)
{
    for (int code = 0; code < kClearCode; ++code) {
        const auto i = static_cast<size_t>(code);
        m_last[i] = m_first[i] = static_cast<uchar>(code);
        m_length[i] = 1;
    }
    clearTable();
}

void Reader::clearTable()
{
    m_width = kMinWidth;
    m_nextFree = m_blockMode ? kClearCode + 1 : kClearCode;
    m_previous = kNone;
    m_groupAt = m_groupBits; // the rest of the group is padding
}

/// Stores the fault and returns kNone.
int Reader::fail(Error error, const char *why)
{
    m_fault = Fault<Error>{error, QString::fromLatin1(why), m_consumed};
    return kNone;
}

/// Reads the next piece of the input. Returns false at its end or after a failure.
bool Reader::refillInput()
{
    m_input.resize(kInputBytes);
    const qint64 got = m_source.read(m_input.data(), static_cast<qint64>(kInputBytes));
    m_input.resize(static_cast<size_t>(std::max<qint64>(got, 0)));
    m_inputAt = 0;
    if (got < 0) {
        fail(Error::Unreadable, "it cannot be read");
    }
    return got > 0;
}

/// Reads the next group of codes. Returns false at the end of the data or after a failure.
bool Reader::fillGroup()
{
    m_group.fill(0);
    m_groupAt = 0;
    size_t have = 0;
    while (have < static_cast<size_t>(m_width)) {
        if (m_inputAt == m_input.size() && !refillInput()) {
            break;
        }
        const size_t take =
            std::min(static_cast<size_t>(m_width) - have, m_input.size() - m_inputAt);
        std::memcpy(m_group.data() + have, m_input.data() + m_inputAt, take);
        m_inputAt += take;
        m_consumed += static_cast<qint64>(take);
        have += take;
    }
    m_groupBits = static_cast<int>(have) * 8;
    return have > 0 && !m_fault;
}

/// Returns the next code, or kNone at the end of the data or after a failure.
int Reader::nextCode()
{
    if (m_nextFree >> m_width != 0 && m_width < m_maxWidth) {
        ++m_width;
        m_groupAt = m_groupBits;
    }
    if (m_groupAt >= m_groupBits && !fillGroup()) {
        return kNone;
    }
    const auto bits = loadLE<quint32>(m_group.data() + m_groupAt / 8) >> (m_groupAt % 8);
    if (m_groupBits - m_groupAt < m_width) {
        // The writer pads the last byte with zero bits. Other bits are the start of a lost code.
        return bits == 0 ? kNone : fail(Error::EndsInCode, "it ends in the middle of a code");
    }
    m_groupAt += m_width;
    return static_cast<int>(bits & ((1U << m_width) - 1));
}

/// Defines the next free code, from the previous code and `code`. Returns false if `code` is
/// invalid.
bool Reader::define(int code)
{
    if (m_previous == kNone) {
        return code < kClearCode;
    }
    const bool isNew = code == m_nextFree; // `code` itself is defined here
    if (code > m_nextFree) {
        return false;
    }
    if (m_nextFree >> m_maxWidth == 0) {
        const auto previous = static_cast<size_t>(m_previous);
        const auto entry = static_cast<size_t>(m_nextFree);
        m_prefix[entry] = static_cast<quint16>(m_previous);
        m_first[entry] = m_first[previous];
        m_last[entry] = isNew ? m_first[previous] : m_first[static_cast<size_t>(code)];
        m_length[entry] = m_length[previous] + 1;
        ++m_nextFree;
    }
    return true;
}

/// Writes the string of `code` to `out`. The part that does not fit is kept in m_pending. Returns
/// the number of bytes written.
qint64 Reader::emit(int code, char *out, qint64 room)
{
    const auto length = static_cast<qint64>(m_length[static_cast<size_t>(code)]);
    char *at = out + length;
    if (length > room) {
        m_pending.resize(static_cast<size_t>(length));
        at = m_pending.data() + length;
    }
    for (qint64 i = 0; i < length; ++i) {
        *--at = static_cast<char>(m_last[static_cast<size_t>(code)]);
        code = m_prefix[static_cast<size_t>(code)];
    }
    if (length <= room) {
        return length;
    }
    std::memcpy(out, m_pending.data(), static_cast<size_t>(room));
    m_pendingAt = static_cast<size_t>(room);
    return room;
}

Result<qint64, Error> Reader::read(char *out, qint64 n)
{
    qint64 done = std::min<qint64>(n, static_cast<qint64>(m_pending.size() - m_pendingAt));
    std::copy_n(m_pending.begin() + static_cast<qint64>(m_pendingAt), done, out);
    m_pendingAt += static_cast<size_t>(done);
    while (done < n && !m_fault) {
        const int code = nextCode();
        if (code == kNone) {
            break;
        }
        if (code == kClearCode && m_blockMode) {
            clearTable();
            continue;
        }
        if (!define(code)) {
            fail(Error::BadCode, "a code in it is not valid");
            break;
        }
        m_previous = code;
        done += emit(code, out + done, n - done);
    }
    if (done == 0 && m_fault) { // the bytes before the fault come first
        return *m_fault;
    }
    return done;
}

} // namespace corvanta::lzw
