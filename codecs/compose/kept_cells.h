// Keeps cells of a row for use after the row is gone.
//
// The cells of a row are only valid until the next row comes, but a level that paused in a
// sub-level completes its element later. Only the columns that it then needs are copied.
#pragma once
#include "base/cell.h"

#include <vector>

namespace corvanta::compose {

/// A column of the table: its index in a row, and what its cells hold.
struct CellColumn
{
    int input = 0; ///< from 0
    cell::Type type = cell::Type::Text;
};

/// Cells are copied whole, because their length is only known from their own bytes (base/cell.h).
/// Copies go to one buffer that is reused and never shrinks, so that keep() allocates only for a
/// row that is larger than all before. Threads: one at a time.
class KeptCells
{
public:
    /// Choose the columns to keep, each once. Call before keep(); cells() is undefined until then.
    /// Their number decides what keep() costs, so choose only what is needed later. All must be
    /// columns of the table whose cells are kept.
    void setColumns(std::vector<CellColumn> columns) { m_columns = std::move(columns); }
    /// Copy the cells of the chosen columns in place of those kept before. `cells`, one pointer
    /// per column of the table, must not be cells().
    void keep(const uchar *const *cells);
    /// The kept cells at the indexes of their columns, as in a row: code that writes a row can also
    /// write kept cells. Other indexes are invalid. Valid until the next keep().
    const uchar *const *cells() const { return m_cells.data(); }

private:
    std::vector<CellColumn> m_columns;
    std::vector<uchar> m_bytes;         // see the drawing in kept_cells.cpp
    std::vector<const uchar *> m_cells; // into m_bytes, by column of the table
};

} // namespace corvanta::compose
