// Decompresses gzip data (RFC 1952) from a stream of bytes.
//
// Accepts several members in sequence, and plain data in place of the first member.
// Threads: one thread at a time per object; separate objects are independent.
#pragma once
#include "base/byte_source.h"
#include "base/result.h"
#include "codecs/deflate/inflater.h"

#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace corvanta::gzip {

/// Why the data cannot be decompressed. Bytes that read() returned before BadData or BadChecksum
/// may be wrong: the checksum is at the end of a member.
enum class Error : quint8 {
    /// The source failed.
    Unreadable = 1,
    /// The data ends inside a member.
    EndsTooEarly,
    /// The method is not deflate, or reserved flags are set.
    UnknownVariant,
    /// The member's data is not a deflate stream.
    BadData,
    /// The content does not match the CRC-32 or size in the trailer.
    BadChecksum,
};

/// Memory: one input buffer and the window of the inflater, whatever the size of the content.
class Reader
{
public:
    /// Create a reader that starts at the source's position. Reads nothing yet and always succeeds:
    /// read() reports a malformed header. `source` must outlive the reader.
    static Result<std::unique_ptr<Reader>, Error> open(ByteSource &source);

    /// Decompress up to `n` bytes. Returns the number of bytes, and 0 at the end of the data. Fewer
    /// than `n` bytes do not mean the end.
    ///
    /// Data that does not start with a gzip header is returned unchanged. Bytes after the last
    /// member that are not a member themselves (padding, for example) are ignored. After a fault,
    /// every call returns that fault. Errors: all of Error; the detail is a text for the user.
    Result<qint64, Error> read(char *out, qint64 n);

    /// At the end of the data: the number of bytes after the last member, which are content that is
    /// lost if a member's header is damaged. 0 if all are zero, which is padding.
    qint64 ignoredBytes() const { return m_ignoredBytes; }

private:
    enum class Stage : quint8 { FirstMember, NextMember, Body, Trailer, Plain, Rest, End };

    explicit Reader(ByteSource &source);
    Result<qint64, Error> step(char *out, qint64 n);
    // refill() and has() return false at the end of the source, which require() reports as
    // EndsTooEarly.
    Result<bool, Error> refill();
    Result<bool, Error> has(size_t n);
    Result<void, Error> require(size_t n);
    Result<void, Error> startMember();
    Result<void, Error> skipHeader();
    Result<void, Error> skipExtraField();
    Result<void, Error> skipZeroTerminated();
    Result<qint64, Error> readBody(char *out, qint64 n);
    Result<void, Error> checkTrailer();
    Result<qint64, Error> readPlain(char *out, qint64 n);
    Result<void, Error> skipRest();
    // The bytes of m_input that are not decoded yet.
    const char *unread() const { return m_input.data() + m_at; }
    size_t unreadBytes() const { return m_end - m_at; }

    ByteSource &m_source;
    std::unique_ptr<deflate::Inflater> m_inflater;
    std::vector<char> m_input; // the unread bytes are those from m_at to m_end
    size_t m_at = 0;
    size_t m_end = 0;
    Stage m_stage = Stage::FirstMember;
    quint32 m_crc = 0;  // of the member's content so far
    quint32 m_size = 0; // of the member's content so far, modulo 2^32
    qint64 m_ignoredBytes = 0;
    std::optional<Fault<Error>> m_fault;
};

} // namespace corvanta::gzip
