// Reads a sheet once to find its columns: their names, their content and where the rows are.
//
// Rows and columns count from 0, in the whole sheet where nothing else is said. The memory of a
// scan depends on the number of columns, not of rows: it keeps bits and counts, no cells. Threads:
// pure; a scan uses its rows from one thread, and SheetRows::stop() ends it from any.
#pragma once
#include "actions/workbook/cell_values.h"
#include "actions/workbook/column_kinds.h"
#include "actions/workbook/sheet_walker.h"
#include "base/occurrences.h"

#include <QString>

#include <vector>

namespace corvanta {

/// A column of a sheet.
struct ScannedColumn
{
    QString name;         ///< in the header; empty without one
    quint16 content = 0;  ///< a set of ColumnContent, of all rows that were read
    quint16 sampled = 0;  ///< the same, of the first rows
    qint64 firstNew = -1; ///< row of the first content that the sample does not have; -1: none
};

/// What the scan found. Constant once made.
struct SheetScan
{
    qint64 headerRow = -1;  ///< -1 without a header
    qint64 firstRow = 0;    ///< of the data
    qint64 lastRow = -1;    ///< with a cell; -1 for a sheet without data
    qint64 cells = 0;       ///< that have a value
    bool isComplete = true; ///< false if the scan ended after the sample
    /// Up to the last column with a cell or a name.
    std::vector<ScannedColumn> columns; ///< from the first column of the area
    std::vector<MixedColumn> mixed;     ///< the first 20
    Occurrences errors;                 ///< error cells that are missing
    sheet::SheetProblems problems;      ///< what the reader repaired
};

/// What the scan reads and how it decides.
struct ScanOptions
{
    WalkOptions walk;
    ValueRules rules;
    /// One row before the data holds the names of the columns.
    bool hasHeader = true;
    /// The header is the first row of the area, also an empty one. Else it is the first with cells.
    bool headerIsFirstRow = false;
    qint64 sampleRows = 0;   ///< rows with cells; 0: all
    bool sampleOnly = false; ///< end the scan after the sample
};

/// Scan the rows: all of them without sampleOnly, because a late cell can make its column a text.
/// Errors: those of the rows.
sheet::WorkbookResult<SheetScan> scanSheet(std::unique_ptr<sheet::SheetRows> rows,
                                           const ScanOptions &options);

} // namespace corvanta
