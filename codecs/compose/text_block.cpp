// The block of 8,000,000 bytes:
//
//     lower half: bytes made of the text (UTF-8) | upper half: the text (UTF-16 units)
//
// A drain encodes the upper half into the lower half, in pieces that fit there in the worst case of
// 3 bytes per unit, and passes the bytes on. UTF-16LE is passed on from the upper half directly.
#include "codecs/compose/text_block.h"

#include "base/utf.h"

#include <QChar>

#include <emmintrin.h>

#include <algorithm>
#include <bit>

namespace corvanta::compose {

static_assert(std::endian::native == std::endian::little, "UTF-16LE is written without conversion");

namespace {

/// Units at which the block is drained. Draining early keeps text and bytes in the processor's
/// cache; only a longer piece uses more of the block.
constexpr qsizetype kUsualUnits = qsizetype(96) * 1024;
constexpr qsizetype kHalfBytes = TextBlock::kBlockBytes / 2;

/// Units at the start that are below the surrogates.
qsizetype countKnown(const char16_t *units, qsizetype n)
{
    constexpr qsizetype kStep = 8;
    const __m128i highest = _mm_set1_epi16(static_cast<short>(0xD7FF));
    qsizetype i = 0;
    // The difference saturates at 0.
    for (; i + kStep <= n; i += kStep) {
        const __m128i above =
            _mm_subs_epu16(_mm_loadu_si128(reinterpret_cast<const __m128i *>(units + i)), highest);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(above, _mm_setzero_si128())) != 0xFFFF) {
            break;
        }
    }
    while (i < n && units[i] < 0xD800) {
        ++i;
    }
    return i;
}

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

void TextBlock::countReplaced(qsizetype n, qsizetype first)
{
    if (m_replaced.count == 0) {
        const auto next = std::find_if(m_rows.begin(), m_rows.end(),
                                       [&](const Row &row) { return row.start > first; });
        const Row row = next == m_rows.begin() ? Row{0, 0} : *(next - 1);
        m_replaced.firstRow = row.number;
        m_textBefore.assign(m_units + row.start, m_units + first);
    }
    m_replaced.count += n;
}

void TextBlock::replaceUnknown(qsizetype units)
{
    constexpr char16_t kUnknown = 0xFFFF;
    for (qsizetype at = 0; at < units; ++at) {
        at += countKnown(m_units + at, units - at);
        if (at == units) {
            return;
        }
        const bool isSurrogate = QChar::isSurrogate(m_units[at]);
        if (isSurrogate &&
            findLoneSurrogate(m_units + at, std::min<qsizetype>(2, units - at)) > 1) {
            ++at; // the second half of a pair
        } else if (isSurrogate || m_units[at] == kUnknown) {
            countReplaced(1, at);
            m_units[at] = kReplacementCharacter;
        }
    }
}

bool TextBlock::drainUtf8(qsizetype units)
{
    constexpr qsizetype kPiece = kHalfBytes / kUtf8BytesPerUnit;
    for (qsizetype at = 0; at < units;) {
        qsizetype n = std::min(kPiece, units - at);
        n -= n == kPiece && QChar::isHighSurrogate(m_units[at + n - 1]) ? 1 : 0;
        qsizetype replaced = 0;
        const qsizetype bytes = utf16ToUtf8(m_units + at, n, m_block.get(), &replaced);
        if (replaced != 0) {
            countReplaced(replaced, at + findLoneSurrogate(m_units + at, n));
        }
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
    if (m_replacesUnknown) {
        replaceUnknown(units);
    }
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
    // The last row continues.
    if (!m_rows.empty()) {
        m_rows.assign(1, {0, m_rows.back().number});
    }
}

void TextBlock::drainAll()
{
    if (m_failure == Failure::None) {
        drain(Rest::None);
    }
}

} // namespace corvanta::compose
