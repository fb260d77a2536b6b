// io/package/member_decoder.h
// Turn a member's stored bytes into its content and hold both against what the directory declares.
#pragma once
#include "base/result.h"
#include "codecs/deflate/inflater.h"
#include "codecs/zip/member.h"

#include <span>

namespace corvanta::zip {

/// Threads: one at a time.
class MemberDecoder
{
public:
    struct Step
    {
        size_t consumed = 0;
        size_t produced = 0;
    };

    explicit MemberDecoder(const Member &member);

    /// Decode as much of `input` as fits into `output`. A step without progress asks for more input
    /// (or, with none left, says that the member is cut off). Errors: BadData, BadSize,
    /// BadChecksum; the last two at the end at the latest, so that what isAtEnd() has been
    /// verified.
    Result<Step, Error> decode(std::span<const char> input, std::span<char> output);

    /// True after the last byte, with size and checksum as declared.
    bool isAtEnd() const { return m_isAtEnd; }
    /// Content bytes so far.
    qint64 position() const { return m_produced; }

private:
    Step copy(std::span<const char> input, std::span<char> output);
    Result<Step, Error> inflate(std::span<const char> input, std::span<char> output);

    qint64 m_size;
    quint32 m_declaredCrc;
    std::unique_ptr<deflate::Inflater> m_inflater; // none: the member is stored as it is
    quint32 m_crc = 0;
    qint64 m_produced = 0;
    bool m_isStreamEnd = false;
    bool m_isAtEnd = false;
};

} // namespace corvanta::zip
