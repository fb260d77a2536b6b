#include "codecs/markup/levels/cell_arena.h"

#include "base/cell.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

constexpr qsizetype kBlockBytes = 64 * 1024;
/// A short text is widened as one block of this many bytes; the cell needs room for all of it.
constexpr quint32 kShortBytes = 16;
static_assert(kShortBytes <= kReadAhead);
constexpr int kSlackBytes = 2 * kShortBytes;

/// Widen up to kShortBytes bytes of ASCII; false when there is something else among them. The
/// tokenizer's buffer may be read, and `out` written, for the whole block.
bool widenShort(const char *in, quint32 n, char16_t *out)
{
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
    const auto high = static_cast<quint32>(_mm_movemask_epi8(bytes));
    if ((high & ((1U << n) - 1)) != 0) {
        return false;
    }
    const __m128i zero = _mm_setzero_si128();
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 8), _mm_unpackhi_epi8(bytes, zero));
    return true;
}

} // namespace

void BlockArena::use(size_t block)
{
    m_block = block;
    m_next = m_blocks[block].bytes.get();
    m_end = m_next + m_blocks[block].size;
}

void BlockArena::reset()
{
    if (!m_blocks.empty()) {
        use(0);
    }
}

uchar *BlockArena::alloc(int n)
{
    // One byte more, to place odd cells.
    if (m_next == nullptr || m_end - m_next < qsizetype(n) + 1) {
        size_t block = m_next == nullptr ? 0 : m_block + 1;
        while (block < m_blocks.size() && m_blocks[block].size <= n) {
            ++block;
        }
        if (block == m_blocks.size()) {
            const qsizetype size = std::max<qsizetype>(kBlockBytes, qsizetype(n) + 1);
            m_blocks.push_back(
                {std::unique_ptr<uchar[]>(new uchar[static_cast<size_t>(size)]), size});
        }
        use(block);
    }
    uchar *const at = m_next + ((n ^ static_cast<int>(reinterpret_cast<quintptr>(m_next))) & 1);
    m_next = at + n;
    return at;
}

const uchar *textCell(CellArena &arena, const RawText &text)
{
    const auto n = static_cast<int>(text.size);
    const int lengthBytes = cell::lengthBytes(cell::codeOfText(n));
    uchar *const bytes = arena.alloc(lengthBytes + 2 * n + kSlackBytes);
    auto *const units = reinterpret_cast<char16_t *>(bytes + lengthBytes);
    const bool isShort = text.size <= kShortBytes && text.form == TextForm::Plain;
    const qsizetype count =
        isShort && widenShort(text.data, text.size, units) ? n : decode(text, units);
    arena.shrinkLast(kSlackBytes + static_cast<int>(2 * (n - count)));
    const quint32 code = cell::codeOfText(count);
    const int usedLengthBytes = cell::lengthBytes(code);
    // A cell whose code turns out shorter starts later: the units keep their place.
    uchar *const begin = bytes + (lengthBytes - usedLengthBytes);
    cell::putLength(begin, code, usedLengthBytes);
    return begin;
}

const uchar *textCell(CellArena &arena, std::u16string_view units)
{
    const auto n = static_cast<qsizetype>(units.size());
    const quint32 code = cell::codeOfText(n);
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const bytes = arena.alloc(static_cast<int>(lengthBytes + 2 * n));
    std::memcpy(cell::putLength(bytes, code, lengthBytes), units.data(), units.size() * 2);
    return bytes;
}

} // namespace corvanta::markup
