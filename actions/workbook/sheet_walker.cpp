// Rows without cells are not stored in workbooks. The walk finds them as gaps between row numbers
// and gives a gap as one step, whatever its length.
#include "actions/workbook/sheet_walker.h"

#include <algorithm>
#include <utility>

namespace corvanta {

namespace {

/// The cells in the columns of the area.
std::span<const sheet::SheetCell> cellsInside(std::span<const sheet::SheetCell> cells,
                                              const sheet::CellArea &area)
{
    if (!cells.empty() && cells.front().column >= area.firstColumn &&
        cells.back().column <= area.lastColumn) {
        return cells;
    }
    const auto column = [](const sheet::SheetCell &cell) { return cell.column; };
    const auto first = std::ranges::lower_bound(cells, area.firstColumn, {}, column);
    const auto last = std::ranges::upper_bound(first, cells.end(), area.lastColumn, {}, column);
    return {first, last};
}

} // namespace

SheetWalker::SheetWalker(std::unique_ptr<sheet::SheetRows> rows, const WalkOptions &options)
    : m_rows(std::move(rows))
    , m_options(options)
    , m_expected(options.area.firstRow)
{
}

/// Read the next row of the area with cells. Returns false after the last one.
sheet::WorkbookResult<bool> SheetWalker::readRow()
{
    for (;;) {
        auto more = m_rows->next(&m_row);
        if (!more || !*more) {
            return more;
        }
        if (m_row.number < m_expected) {
            m_lateRows += m_row.number >= m_options.area.firstRow ? 1 : 0;
            continue;
        }
        if (m_row.number > m_options.area.lastRow) {
            return false;
        }
        m_cells = cellsInside(m_row.cells, m_options.area);
        const bool isHidden = m_row.isHidden && m_options.skipHiddenRows;
        m_hidden += isHidden ? 1 : 0;
        if (!isHidden && !m_cells.empty()) {
            return true;
        }
    }
}

/// The empty rows before row `upTo`.
WalkStep SheetWalker::emptyRows(qint64 upTo)
{
    const qint64 first = std::exchange(m_expected, upTo);
    const qint64 count = upTo - first - std::exchange(m_hidden, 0);
    if (m_options.emptyRows == EmptyRows::Stop && first > m_options.area.firstRow) {
        m_isEnd = true;
        return {};
    }
    return {WalkStep::Kind::Empty, count, first, {}};
}

/// Give the row that was read, after the gap before it.
WalkStep SheetWalker::takeRow()
{
    m_hasRow = false;
    m_hidden = 0;
    m_expected = m_row.number + 1;
    return {WalkStep::Kind::Row, 1, m_row.number, m_cells};
}

sheet::WorkbookResult<WalkStep> SheetWalker::next()
{
    if (m_isEnd) {
        return WalkStep();
    }
    if (!m_hasRow) {
        const auto more = readRow();
        if (!more) {
            return more.fault();
        }
        if (!*more) {
            m_isEnd = true;
            return WalkStep();
        }
        m_hasRow = true;
        if (m_row.number - m_hidden > m_expected && m_options.emptyRows != EmptyRows::Skip) {
            return emptyRows(m_row.number);
        }
    }
    return takeRow();
}

} // namespace corvanta
