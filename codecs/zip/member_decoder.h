// Decodes the stored bytes of a member and compares its content with the directory.
#pragma once
#include "base/result.h"
#include "codecs/deflate/inflater.h"
#include "codecs/zip/member.h"

#include <span>

namespace corvanta::zip {

/// Threads: one thread at a time per object.
class MemberDecoder
{
public:
    struct Step
    {
        size_t consumed = 0; ///< Bytes of input.
        size_t produced = 0; ///< Bytes of output.
    };

    /// The method of `member` must be kStored or kDeflated.
    explicit MemberDecoder(const Member &member);

    /// Decode as much of `input` as fits into `output`. A step without progress needs more input;
    /// if there is none, the member is truncated. Errors: BadData, BadSize, BadChecksum. Size and
    /// checksum are verified at the end: a member for which isAtEnd() is true is correct.
    Result<Step, Error> decode(std::span<const char> input, std::span<char> output);

    /// Whether the last byte has been decoded, and size and checksum are as declared.
    bool isAtEnd() const { return m_isAtEnd; }
    /// Number of content bytes decoded so far.
    qint64 position() const { return m_produced; }

private:
    Result<void, Error> finish();
    Step copy(std::span<const char> input, std::span<char> output);
    Result<Step, Error> inflate(std::span<const char> input, std::span<char> output);

    qint64 m_size;
    quint32 m_declaredCrc;
    std::unique_ptr<deflate::Inflater> m_inflater; // null for a stored member
    quint32 m_crc = 0;
    qint64 m_produced = 0;
    bool m_isStreamEnd = false;
    bool m_isAtEnd = false;
};

} // namespace corvanta::zip
