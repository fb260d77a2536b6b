// codecs/parquet/cell_block.h
// A run of cells of one column, and the making of them.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/read/column.h"

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace corvanta::parquet {

/// Grows, but forgets what it held: no copying, no clearing.
class Scratch
{
public:
    uchar *room(size_t n)
    {
        if (n > m_size) {
            m_bytes.reset(new uchar[n]);
            m_size = n;
        }
        return m_bytes.get();
    }
    uchar *data() { return m_bytes.get(); }
    const uchar *data() const { return m_bytes.get(); }
    size_t capacity() const { return m_size; }

private:
    std::unique_ptr<uchar[]> m_bytes;
    size_t m_size = 0;
};

/// Rows of one column, used again and again: its memory grows and never shrinks. Also holds the
/// entries of a dictionary.
struct CellBlock
{
    qsizetype rows = 0;
    int cellBytes =
        0; ///< 4 or 8: cells lie one after the other in `fixed`; 0: `texts` points to them
    Scratch fixed;
    std::vector<const uchar *> texts;
    Scratch arena;                               ///< the texts' cells
    std::shared_ptr<const CellBlock> dictionary; ///< which `texts` may point into

    const uchar *cell(qsizetype row) const
    {
        return cellBytes != 0 ? fixed.data() + row * cellBytes : texts[static_cast<size_t>(row)];
    }
    /// Bytes of memory held.
    size_t capacity() const
    {
        return fixed.capacity() + arena.capacity() + texts.capacity() * sizeof(const uchar *);
    }
};

/// Have room for `rows` cells. Call it before the functions below.
void reserveRows(const Column &column, qsizetype rows, CellBlock &block);

/// Make `block` hold cells of `n` stored values of a fixed width, which lie at `values` one after
/// the other with a readable byte behind them.
void convertFixed(const Column &column, const uchar *values, qsizetype n, CellBlock &block);

/// The same for values of varying length (or fixed ones that become texts).
void convertBytes(const Column &column, std::span<const std::string_view> values, CellBlock &block);

/// Make `block` hold the entries of `dictionary` that `indexes` names, all of them checked.
void gather(const std::shared_ptr<const CellBlock> &dictionary, std::span<const quint32> indexes,
            CellBlock &block);

/// Make the block's first cells those of the rows whose level is not 0; the others become missing.
void spreadOverNulls(const Column &column, std::span<const uchar> levels, CellBlock &block);

} // namespace corvanta::parquet
