// The block of 8,000,000 bytes:
//
//     lower half: bytes made of the text (UTF-8) | upper half: the text (UTF-16 units)
//
// A drain encodes the upper half into the lower half, in pieces that fit there in the worst case of
// 3 bytes per unit, and passes the bytes on. UTF-16LE is passed on from the upper half directly.
#include "codecs/compose/text_block.h"

#include "base/utf.h"

#include <QChar>

#include <algorithm>
#include <bit>

namespace corvanta::compose {

static_assert(std::endian::native == std::endian::little, "UTF-16LE is written without conversion");

namespace {

/// Units at which the block is drained. Draining early keeps text and bytes in the processor's
/// cache; only a longer piece uses more of the block.
constexpr qsizetype kUsualUnits = 96 * 1024;
constexpr qsizetype kHalfBytes = TextBlock::kBlockBytes / 2;

} // namespace

std::string encode(std::u16string_view text, Encoding encoding)
{
    if (encoding == Encoding::Utf16Le) {
        return {reinterpret_cast<const char *>(text.data()), text.size() * sizeof(char16_t)};
    }
    std::string bytes(text.size() * kUtf8BytesPerUnit, '\0');
    bytes.resize(static_cast<size_t>(
        utf16ToUtf8(text.data(), static_cast<qsizetype>(text.size()), bytes.data())));
    return bytes;
}

FixedText::FixedText(std::u16string_view text)
    : m_units(text)
    , m_size(static_cast<qsizetype>(text.size()))
{
    m_units.resize(static_cast<size_t>((m_size + kStep - 1) / kStep * kStep), u'\0');
}

TextBlock::TextBlock(Encoding encoding, Drain drain)
    : m_encoding(encoding)
    , m_drain(std::move(drain))
    , m_block(std::make_unique_for_overwrite<char[]>(kBlockBytes))
    , m_units(reinterpret_cast<char16_t *>(m_block.get() + kHalfBytes))
    , m_drainAt(kUsualUnits)
{
}

char16_t *TextBlock::reserveSlow(qsizetype units)
{
    if (m_failure == Failure::None) {
        drain(Rest::Follows);
    }
    if (m_failure == Failure::None && m_fill + units > kMaxUnits) {
        m_failure = Failure::TooLarge;
    }
    if (m_failure != Failure::None) {
        m_drainAt = -1;
        return nullptr;
    }
    return m_units + m_fill;
}

void TextBlock::append(std::u16string_view text)
{
    if (char16_t *const out = reserve(static_cast<qsizetype>(text.size()))) {
        commit(std::copy(text.begin(), text.end(), out));
    }
}

void TextBlock::append(const FixedText &text)
{
    if (char16_t *const out = reserve(text.room())) {
        commit(text.put(out));
    }
}

bool TextBlock::drainUtf8(qsizetype units)
{
    constexpr qsizetype kPiece = kHalfBytes / kUtf8BytesPerUnit;
    for (qsizetype at = 0; at < units;) {
        qsizetype n = std::min(kPiece, units - at);
        n -= n == kPiece && QChar::isHighSurrogate(m_units[at + n - 1]) ? 1 : 0;
        const qsizetype bytes = utf16ToUtf8(m_units + at, n, m_block.get());
        if (!m_drain(m_block.get(), bytes)) {
            return false;
        }
        at += n;
    }
    return true;
}

void TextBlock::drain(Rest rest)
{
    // The second half of a surrogate pair may be in the next piece.
    const bool keepsOne =
        rest == Rest::Follows && m_fill != 0 && QChar::isHighSurrogate(m_units[m_fill - 1]);
    const qsizetype units = keepsOne ? m_fill - 1 : m_fill;
    const bool done =
        units == 0 || (m_encoding == Encoding::Utf8
                           ? drainUtf8(units)
                           : m_drain(m_units, units * static_cast<qsizetype>(sizeof(char16_t))));
    if (!done) {
        m_failure = Failure::Drain;
        m_drainAt = -1;
        return;
    }
    m_units[0] = keepsOne ? m_units[units] : m_units[0];
    m_fill = keepsOne ? 1 : 0;
}

void TextBlock::drainAll()
{
    if (m_failure == Failure::None) {
        drain(Rest::None);
    }
}

} // namespace corvanta::compose
