// codecs/lzw/lzw_reader.h
// Decompress the Unix "compress" format (.Z).
//
// Threads: one at a time; objects share nothing.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <array>
#include <memory>
#include <vector>

namespace corvanta::lzw {

enum class Error : quint8 {
    BadHeader = 1, ///< no .Z file, or of a kind that this decoder must not guess at
    BadCode,       ///< a code that the stream has not defined yet
    EndsInCode,    ///< the file stops in the middle of a code
    Unreadable,    ///< the source failed
};

class Reader
{
public:
    /// Read the header at the source's position. `source` must outlive the reader.
    /// Errors: BadHeader, Unreadable.
    static Result<std::unique_ptr<Reader>, Error> open(ByteSource &source);

    /// Decompress up to `n` bytes: the count, 0 at the end. The format has no checksum and no end
    /// mark. After a fault every call gives that fault. Errors: BadCode, EndsInCode, Unreadable.
    Result<qint64, Error> read(char *out, qint64 n);

    /// Compressed bytes taken from the source so far.
    qint64 consumed() const { return m_consumed; }

private:
    static constexpr int kTableSize = 1 << 16;
    static constexpr int kNone = -1;

    Reader(ByteSource &source, int maxWidth, bool blockMode);
    int nextCode();
    bool fillGroup();
    void clearTable();
    bool define(int code);
    qint64 emit(int code, char *out, qint64 room);
    int failWith(Error error, const char *why);

    ByteSource &m_source;
    const int m_maxWidth;
    const bool m_blockMode;
    Fault<Error> m_fault{};
    bool m_failed = false;

    std::vector<uchar> m_input;
    size_t m_inputAt = 0;
    qint64 m_consumed = 0;
    // Codes come in groups of eight, a group being as many bytes as a code has bits.
    std::array<uchar, 16 + 8> m_group{};
    int m_groupBits = 0;
    int m_groupAt = 0;

    int m_width = 9;
    int m_nextFree = 256;
    int m_previous = kNone;
    std::vector<quint16> m_prefix;
    std::vector<uchar> m_last;     // last byte of a code's string
    std::vector<uchar> m_first;    // first byte of a code's string
    std::vector<quint32> m_length; // of a code's string
    std::vector<char> m_pending;   // a string that did not fit the caller's room
    size_t m_pendingAt = 0;
};

} // namespace corvanta::lzw
