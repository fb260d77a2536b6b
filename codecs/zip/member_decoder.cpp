// The stored bytes of a member are its content (method 0) or a raw deflate stream (method 8, RFC
// 1951). The decoder stops at the declared size, with room for one more byte to find excess
// content.
#include "codecs/zip/member_decoder.h"

#include "codecs/deflate/crc32.h"

#include <algorithm>
#include <cstring>

namespace corvanta::zip {

MemberDecoder::MemberDecoder(const Member &member)
    : m_size(member.size)
    , m_declaredCrc(member.crc)
    , m_inflater(member.method == kDeflated ? deflate::makeInflater() : nullptr)
{
}

Result<MemberDecoder::Step, Error> MemberDecoder::decode(std::span<const char> input,
                                                         std::span<char> output)
{
    if (m_isAtEnd) {
        return Step{};
    }
    const auto left = static_cast<size_t>(m_size - m_produced);
    std::span<char> target = output.first(std::min(output.size(), left));
    char excess = 0; // receives content beyond the declared size
    // Without room, neither a copy nor the inflater would notice that content follows.
    if (left == 0) {
        target = {&excess, 1};
    }
    auto step = m_inflater ? inflate(input, target) : copy(input, target);
    if (!step) {
        return step.fault();
    }
    if (left == 0 && step->produced > 0) {
        return Fault{Error::BadSize};
    }
    m_crc = deflate::crc32(m_crc, target.first(step->produced));
    m_produced += static_cast<qint64>(step->produced);
    if (m_isStreamEnd) {
        if (auto finished = finish(); !finished) {
            return finished.fault();
        }
    }
    return step;
}

/// Compare the decoded content with the directory.
Result<void, Error> MemberDecoder::finish()
{
    if (m_produced != m_size) {
        return Fault{Error::BadSize};
    }
    if (m_crc != m_declaredCrc) {
        return Fault{Error::BadChecksum};
    }
    m_isAtEnd = true;
    return {};
}

/// Method 0. The declared size alone says where the content ends.
MemberDecoder::Step MemberDecoder::copy(std::span<const char> input, std::span<char> output)
{
    const size_t bytes = std::min(input.size(), output.size());
    if (bytes > 0) {
        std::memcpy(output.data(), input.data(), bytes);
    }
    m_isStreamEnd = m_produced + static_cast<qint64>(bytes) == m_size;
    return {bytes, bytes};
}

/// Method 8. A call that neither reads nor writes although it could would repeat forever.
Result<MemberDecoder::Step, Error> MemberDecoder::inflate(std::span<const char> input,
                                                          std::span<char> output)
{
    const auto step = m_inflater->inflate(input, output);
    const bool isStuck =
        !input.empty() && !output.empty() && step.consumed == 0 && step.produced == 0;
    if (step.state == deflate::Inflater::State::Bad) {
        return Fault{Error::BadData};
    }
    m_isStreamEnd = step.state == deflate::Inflater::State::End;
    if (isStuck && !m_isStreamEnd) {
        return Fault{Error::BadData};
    }
    // The member ends with its stream. Bytes that the inflater gives back are not needed.
    return Step{static_cast<size_t>(std::max<qint64>(step.consumed, 0)), step.produced};
}

} // namespace corvanta::zip
