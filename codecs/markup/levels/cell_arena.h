// codecs/markup/levels/cell_arena.h
// Where text cells are built: memory that the caller lends, or an arena of our own.
#pragma once
#include "codecs/markup/text/raw_text.h"

#include <QtGlobal>

#include <memory>
#include <string_view>
#include <vector>

namespace corvanta::markup {

/// Room for cells. Threads: one at a time.
class CellArena
{
public:
    CellArena() = default;
    CellArena(const CellArena &) = delete;
    CellArena &operator=(const CellArena &) = delete;
    virtual ~CellArena() = default;

    /// Room for `n` bytes; an odd number starts at an odd address, so that the units of a text cell
    /// are aligned. Throws std::bad_alloc.
    virtual uchar *alloc(int n) = 0;
    /// Give back the last `n` bytes of the last allocation.
    virtual void shrinkLast(int n) = 0;
};

/// Memory of its own, used again after reset().
class BlockArena final : public CellArena
{
public:
    uchar *alloc(int n) override;
    void shrinkLast(int n) override { m_next -= n; }
    void reset();

private:
    struct Block
    {
        std::unique_ptr<uchar[]> bytes;
        qsizetype size = 0;
    };
    void use(size_t block);

    std::vector<Block> m_blocks;
    size_t m_block = 0;
    uchar *m_next = nullptr;
    uchar *m_end = nullptr;
};

/// A text cell (base/cell.h) of a piece of a tokenizer's buffer; `text.size` is at most
/// kTextCellUnits.
const uchar *textCell(CellArena &arena, const RawText &text);
/// A text cell of UTF-16 units, at most kTextCellUnits.
const uchar *textCell(CellArena &arena, std::u16string_view units);

} // namespace corvanta::markup
