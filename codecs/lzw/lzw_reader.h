// Decompresses the Unix "compress" format (.Z) from a stream of bytes.
//
// Accepts maximum code widths from 9 to 16 bits, with and without block mode.
// Threads: one thread at a time per object; separate objects are independent.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta::lzw {

/// Why the data cannot be decompressed.
enum class Error : quint8 {
    /// Not a .Z file, or an unknown variant.
    BadHeader = 1,
    /// A code that the stream has not defined yet.
    BadCode,
    /// The file ends inside a code.
    EndsInCode,
    /// The source failed.
    Unreadable,
};

/// Memory: less than 1 MiB of tables, whatever the size of the content.
class Reader
{
public:
    /// Read the header at the source's position. `source` must outlive the reader.
    /// Errors: BadHeader, Unreadable; the detail is a text for the user.
    static Result<std::unique_ptr<Reader>, Error> open(ByteSource &source);

    /// Decompress up to `n` bytes. Returns the number of bytes, and 0 at the end of the data. The
    /// format has neither a checksum nor an end mark, so that a file that ends between two codes
    /// looks complete. After a fault, every call returns that fault.
    /// Errors: BadCode, EndsInCode, Unreadable; the detail is a text for the user.
    Result<qint64, Error> read(char *out, qint64 n);

private:
    // One entry for each code of 16 bits.
    static constexpr int kTableSize = 1 << 16;
    static constexpr int kNone = -1;

    Reader(ByteSource &source, int maxWidth, bool blockMode);
    int nextCode();
    bool fillGroup();
    void clearTable();
    bool define(int code);
    qint64 emit(int code, char *out, qint64 room);
    int fail(Error error, const char *why);
    bool refillInput();

    ByteSource &m_source;
    const int m_maxWidth;
    const bool m_blockMode;
    // Why reading cannot continue. The functions that run once per code return kNone instead
    // of a Result; read() looks here.
    std::optional<Fault<Error>> m_fault;

    // Input buffer, the index of its next byte, and the number of bytes of the source that are in
    // groups or the header: the offset of faults.
    std::vector<uchar> m_input;
    size_t m_inputAt = 0;
    qint64 m_consumed = 0;
    // The current group of eight codes. Its size in bytes is the number of bits of a code. The
    // array has room for the load of a whole word at any bit.
    std::array<uchar, 16 + 8> m_group{};
    int m_groupBits = 0; // number of bits in m_group
    int m_groupAt = 0;   // bit offset of the next code

    int m_width = 9;               // bits of a code
    int m_nextFree = 256;          // the code that is defined next
    int m_previous = kNone;        // the previous code
    std::vector<quint16> m_prefix; // code of a code's string without its last byte
    std::vector<uchar> m_last;     // last byte of a code's string
    std::vector<uchar> m_first;    // first byte of a code's string
    std::vector<quint32> m_length; // of a code's string
    std::vector<char> m_pending;   // a string that did not fit the caller's buffer
    size_t m_pendingAt = 0;
};

} // namespace corvanta::lzw
