// A text cell, as it is built: room for the longest possible text is allocated, the text is decoded
// to its end, and the length code is written before it.
//
//     |<- unused, if the code is short ->| length code | UTF-16 units | returned to the arena |
//                                        ^ the cell                   (text.size - units, slack)
#include "codecs/markup/levels/cell_arena.h"

#include "base/cell.h"
#include "base/utf.h"

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

constexpr qsizetype kBlockBytes = qsizetype(64) * 1024;
/// A text up to one block is widened as a whole block, so the allocation needs room for it.
static_assert(kWidenBlock <= qsizetype(kReadAhead));
constexpr int kSlackBytes = 2 * kWidenBlock;

/// Widen up to kWidenBlock bytes of ASCII; false when there are other bytes among them. Reads a
/// whole block at `in` and writes one to `out`.
bool widenShort(const char *in, quint32 n, char16_t *out)
{
    return (widenBlock(in, out) & ((1U << n) - 1)) == 0;
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
    // One byte more, to align the address.
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
    const bool isShort = text.size <= kWidenBlock && text.form == TextForm::Plain;
    const qsizetype count =
        isShort && widenShort(text.data, text.size, units) ? n : decode(text, units);
    arena.shrinkLast(kSlackBytes + static_cast<int>(2 * (n - count)));
    const quint32 code = cell::codeOfText(count);
    const int usedLengthBytes = cell::lengthBytes(code);
    // A cell with a shorter code starts later: the units are not moved.
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
