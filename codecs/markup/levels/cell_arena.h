// Builds text cells in memory that the caller provides, or in an arena.
//
// The readers' last level builds its cells directly in the batch of the output pin; the cells of
// the other levels repeat over several rows and live in arenas of their own.
#pragma once
#include "codecs/markup/text/raw_text.h"

#include <QtGlobal>

#include <memory>
#include <string_view>
#include <vector>

namespace corvanta::markup {

/// Memory for cells. Threads: one at a time.
class CellArena
{
public:
    // Not copied: cells refer to the memory of one arena.
    CellArena() = default;
    CellArena(const CellArena &) = delete;
    CellArena &operator=(const CellArena &) = delete;
    virtual ~CellArena() = default;

    /// Allocate `n` bytes. The address is odd if `n` is odd, so that the units of a text cell,
    /// which are at its end, are aligned. Throws std::bad_alloc.
    virtual uchar *alloc(int n) = 0;
    /// Return the last `n` bytes of the last allocation.
    virtual void shrinkLast(int n) = 0;
};

/// Owns its memory, which reset() makes available again.
class BlockArena final : public CellArena
{
public:
    uchar *alloc(int n) override;
    void shrinkLast(int n) override { m_next -= n; }
    /// Invalidate all cells and reuse their memory.
    void reset();

private:
    /// A piece of memory; never moved, so that cells keep their addresses.
    struct Block
    {
        std::unique_ptr<uchar[]> bytes;
        qsizetype size = 0;
    };
    void use(size_t block);

    std::vector<Block> m_blocks;
    /// Index of the block in use; the free part of it is m_next to m_end.
    size_t m_block = 0;
    uchar *m_next = nullptr;
    uchar *m_end = nullptr;
};

/// Build a text cell (base/cell.h) from undecoded text; `text.size` is at most
/// limits::kTextCellUnits. The cell is in `arena`.
const uchar *textCell(CellArena &arena, const RawText &text);
/// Build a text cell from UTF-16 units, at most limits::kTextCellUnits.
const uchar *textCell(CellArena &arena, std::u16string_view units);

} // namespace corvanta::markup
