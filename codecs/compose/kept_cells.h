// Keeps cells of a row for use after the row is gone.
#pragma once
#include "base/cell.h"

#include <vector>

namespace corvanta::compose {

/// A column of the table: its index in a row, and what its cells hold.
struct CellColumn
{
    int input = 0;
    cell::Type type = cell::Type::Text;
};

/// Copies go to one buffer that is reused. Threads: one at a time.
class KeptCells
{
public:
    /// Choose the columns to keep, each once.
    void setColumns(std::vector<CellColumn> columns) { m_columns = std::move(columns); }
    /// Copy the cells of the chosen columns in place of those kept before. `cells`, one pointer
    /// per column of the table, must not be cells().
    void keep(const uchar *const *cells);
    /// The kept cells at the indexes of their columns; other indexes are invalid. Valid until the
    /// next keep().
    const uchar *const *cells() const { return m_cells.data(); }

private:
    std::vector<CellColumn> m_columns;
    std::vector<uchar> m_bytes;
    std::vector<const uchar *> m_cells;
};

} // namespace corvanta::compose
