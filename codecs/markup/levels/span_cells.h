// Finds the cells of the rows of an HTML table by the columns that they cover, and repeats the
// values of those that span several columns or rows.
//
// A path whose first step is an index without a name, as "[2]" and "[2]/a/@href", then starts at
// the cell that covers that column. All other paths start at the row.
#pragma once
#include "codecs/markup/levels/cell_arena.h"
#include "codecs/markup/tree/path_set.h"
#include "codecs/markup/tree/span_grid.h"

#include <optional>
#include <span>
#include <vector>

namespace corvanta::markup {

/// Paths are numbered as in the PathSet of the level. Threads: one at a time.
class SpanCells
{
public:
    /// Add the next path. Only before the first row.
    void add(const std::vector<PathStep> &path);

    /// Begin a table.
    void clear() { m_grid.clear(); }
    /// Begin a group of rows (thead, tbody, tfoot).
    void beginGroup() { m_grid.beginGroup(); }

    /// True when the row has a "td" or "th".
    static bool hasCells(const MarkupTree &tree, quint32 row);
    /// A row without cells: it is not read, but rows of cells that span it.
    void skipRow() { m_grid.beginRow(); }
    /// Place the cells of a row and look up all paths. `found` has, by path, what it selects as a
    /// path of other elements; the result, which is valid until the next call, what it selects
    /// here.
    std::span<const quint32> resolve(const MarkupTree &tree, quint32 row,
                                     std::span<const quint32> found);

    /// True when the path starts at a cell of an earlier row.
    bool isCarried(size_t path) const
    {
        return m_paths[path].column && m_grid.isCarried(*m_paths[path].column);
    }
    /// True when the path starts at a cell of the current row that later rows share: call keep().
    bool isShared(size_t path) const
    {
        const auto &column = m_paths[path].column;
        return column && *column < m_cells.size() && m_cells[*column].spansRows;
    }
    /// Keep the value of a path, a text cell, for the rows that share it.
    void keep(size_t path, const uchar *cell);
    /// The text cell of a path that isCarried(). Valid until the next keep().
    const uchar *kept(size_t path) const;

private:
    struct Path
    {
        /// Of the first step.
        std::optional<quint32> column = {};
        /// The other steps; null: none.
        std::unique_ptr<PathSet> rest = {};
        /// The bytes of the kept cell, which end with the units and may begin with one byte more to
        /// align them.
        std::vector<uchar> kept = {};
        /// Of the kept cell, in bytes; 0: missing.
        size_t keptSize = 0;
    };
    /// What covers a column in the current row.
    struct Cell
    {
        quint32 item = MarkupTree::kNone;
        bool spansRows = false;
    };

    void placeRow(const MarkupTree &tree, quint32 row);
    quint32 select(Path &path, const MarkupTree &tree) const;

    std::vector<Path> m_paths;
    /// By column that a path uses.
    std::vector<Cell> m_cells;
    SpanGrid m_grid;
    std::vector<quint32> m_found;
};

} // namespace corvanta::markup
