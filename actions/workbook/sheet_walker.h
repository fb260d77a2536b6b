// Walks over the rows of one sheet as the parameters select them: within an area, with or without
// empty and hidden rows.
//
// The scan that decides the columns and the delivery of rows use the same walk, so that they see
// the same rows. Rows count from 0 in the sheet, also when the area begins later. No row is copied:
// a step shows the cells that the reader holds.
#pragma once
#include "actions/workbook/read_excel_params.h"
#include "codecs/sheet/workbook_reader.h"

#include <memory>
#include <span>

namespace corvanta {

/// What is read of a sheet. Without an area every row and column of the sheet is inside.
struct WalkOptions
{
    sheet::CellArea area; ///< rows and columns outside of it are skipped
    EmptyRows emptyRows = EmptyRows::Keep;
    bool skipHiddenRows = false; ///< rows that a filter or the user has hidden
};

/// One step of a walk.
struct WalkStep
{
    enum class Kind : quint8 {
        Row,   ///< with at least one cell
        Empty, ///< `count` empty rows
        End,
    };
    Kind kind = Kind::End;
    qint64 count = 0;
    qint64 row = 0;                          ///< number of the row, or of the first empty one
    std::span<const sheet::SheetCell> cells; ///< inside the area; valid until the next step
};

/// Threads: one at a time, except the functions of rows() that say otherwise.
class SheetWalker
{
public:
    /// Owns the rows, which are at their first one. The reader that made them must outlive the
    /// walker.
    SheetWalker(std::unique_ptr<sheet::SheetRows> rows, const WalkOptions &options);

    /// The next step; after the end, the end again. Errors: those of the rows. Empty rows after the
    /// last row with cells are not delivered.
    sheet::WorkbookResult<WalkStep> next();

    /// For what the reader repaired, and how far it is.
    const sheet::SheetRows &rows() const { return *m_rows; }
    /// Rows with cells that came after a later one; they are not delivered.
    qint64 lateRows() const { return m_lateRows; }

private:
    /// Read the next row of the area that has cells. Returns false at the end.
    sheet::WorkbookResult<bool> readRow();
    /// The gap before a row, as one step: it may be a million rows.
    WalkStep emptyRows(qint64 upTo);
    /// The row that readRow() has read, as a step.
    WalkStep takeRow();

    std::unique_ptr<sheet::SheetRows> m_rows;
    const WalkOptions m_options;
    qint64 m_expected;   // number of the next row
    qint64 m_hidden = 0; // hidden rows since then
    sheet::SheetRow m_row;
    std::span<const sheet::SheetCell> m_cells; // of m_row, inside the area
    bool m_hasRow = false;                     // m_row is not delivered yet
    bool m_isEnd = false;
    qint64 m_lateRows = 0;
};

} // namespace corvanta
