// A block of cells of one column, and the functions that fill it from stored values.
//
// Threads: one thread at a time per block, but a dictionary may be read by several threads.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/read/column.h"

#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace corvanta::parquet {

/// Memory that grows without keeping its content, so that nothing is copied or cleared.
class Scratch
{
public:
    /// Memory of at least `n` bytes. If it has to grow, the old content is lost.
    uchar *room(size_t n)
    {
        if (n > m_size) {
            m_bytes.reset(new uchar[n]);
            m_size = n;
        }
        return m_bytes.get();
    }
    /// The memory of the last room(); null before the first call.
    uchar *data() { return m_bytes.get(); }
    const uchar *data() const { return m_bytes.get(); }
    /// Number of bytes allocated.
    size_t capacity() const { return m_size; }

private:
    std::unique_ptr<uchar[]> m_bytes;
    size_t m_size = 0;
};

/// Cells of one column, or the entries of a dictionary. Blocks are reused: their memory grows and
/// never shrinks.
struct CellBlock
{
    /// Number of cells.
    qsizetype rows = 0;
    /// 4 or 8: the cells are adjacent in `fixed`. 0: they are text cells, and `texts` has their
    /// addresses.
    int cellBytes = 0;
    Scratch fixed;
    std::vector<const uchar *> texts;
    Scratch arena;                               ///< The text cells.
    std::shared_ptr<const CellBlock> dictionary; ///< Keeps the cells alive that `texts` points to.
    /// A byte per cell, 1 if its value is among those of Column::loss. Empty if there is none.
    std::vector<uchar> changed;
    /// The row group ends with this block, and its chunk has values for more rows.
    bool hasSurplus = false;

    /// The cell of a row (0-based). Valid until the block is filled again.
    const uchar *cell(qsizetype row) const
    {
        return cellBytes != 0 ? fixed.data() + row * cellBytes : texts[static_cast<size_t>(row)];
    }
    /// Number of bytes of memory that the block holds, without the dictionary.
    size_t capacity() const
    {
        return fixed.capacity() + arena.capacity() + texts.capacity() * sizeof(const uchar *) +
               changed.capacity();
    }
};

/// Empty the block and reserve memory for `rows` cells. Call it before the functions below, which
/// may produce fewer cells: spreadOverNulls() needs room for all rows.
void reserveRows(const Column &column, qsizetype rows, CellBlock &block);

/// Fill `block` with the cells of `n` stored values of fixed width. The values are adjacent at
/// `values`, and one readable byte follows the last one.
void convertFixed(const Column &column, const uchar *values, qsizetype n, CellBlock &block);

/// Fill `block` with text cells of values of any length.
void convertBytes(const Column &column, std::span<const std::string_view> values, CellBlock &block);

/// Fill `block` with entries of `dictionary`. The caller has checked that all indexes are below
/// dictionary->rows.
void gather(const std::shared_ptr<const CellBlock> &dictionary, std::span<const quint32> indexes,
            CellBlock &block);

/// Distribute the block's cells over the rows whose level is not 0. The other rows become missing.
/// `levels` has one byte per row, and as many that are not 0 as the block has cells.
void spreadOverNulls(const Column &column, std::span<const uchar> levels, CellBlock &block);

} // namespace corvanta::parquet
