// Chooses the sheets and cells of a workbook that the parameters select, and scans them.
//
// A range can name cells (B3:F), a table or a defined name. Tables and names have a sheet of their
// own, which replaces the selected one.
#pragma once
#include "actions/workbook/sheet_scan.h"
#include "codecs/sheet/cell_area.h"
#include "codecs/sheet/workbook_reader.h"

#include <memory>
#include <vector>

namespace corvanta {

/// One sheet to read. Rows and columns count from 0 in the sheet.
struct SheetTask
{
    size_t sheet = 0; ///< index in the workbook
    QString name;     ///< of the sheet
    ScanOptions options;
    bool needsSort = false;                     ///< its rows are not in order
    std::vector<sheet::CellArea> merged;        ///< to fill
    std::vector<sheet::CellArea> hiddenColumns; ///< to leave out
    SheetScan scan;

    /// Column of the sheet for a column of the scan.
    int columnOf(size_t scanned) const
    {
        return options.walk.area.firstColumn + static_cast<int>(scanned);
    }
    /// The rows as the task reads them. Errors: those of openSheet().
    sheet::WorkbookResult<std::unique_ptr<sheet::SheetRows>>
    openRows(sheet::WorkbookReader &reader) const;
};

enum class TaskError : quint8 {
    NotFound, ///< no such sheet, table, name or range; the detail says which
    Unreadable,
};

/// Makes the tasks of one workbook. `params` has expanded texts. Threads: one at a time.
class TaskMaker
{
public:
    /// `params` and `reader` must outlive the maker. Making tasks moves the reader.
    TaskMaker(const ReadExcelParams &params, sheet::WorkbookReader &reader);

    /// The sheets, scanned. Errors: NotFound, Unreadable (see fault()).
    Result<std::vector<SheetTask>, TaskError> make();
    /// The sheets that the parameters select without their range, by index, in the order of the
    /// workbook. Errors: those of make().
    Result<std::vector<size_t>, TaskError> chooseSheets();
    /// Why the workbook is Unreadable.
    const Fault<sheet::WorkbookError> &fault() const { return m_fault; }
    /// The chart before the first worksheet that is read instead of it; empty: none.
    const QString &skippedChart() const { return m_skippedChart; }

private:
    using Sheets = Result<std::vector<size_t>, TaskError>;

    Fault<TaskError> unreadable(const Fault<sheet::WorkbookError> &fault);
    // The one sheet of each way to select it.
    Sheets selectedSheet();
    Sheets sheetOfNumber();
    Sheets sheetOfName();
    /// The first sheet that has a cell; NotFound if all are empty.
    Sheets firstWithData();
    /// Those with cells whose names match; no others are read by a pattern.
    std::vector<size_t> sheetsOf(const QString &pattern) const;
    /// For messages: "its only sheet is 'a'", or how many there are and the first names.
    QString listOfSheets() const;
    /// Reads the sheet up to its first cell.
    Result<bool, TaskError> hasData(size_t sheet);
    // Set the cells of a task: an area, those of the parameter, of a table or of a defined name.
    // The last two return false if there is no such table or name.
    Result<bool, TaskError> setArea(const sheet::SheetArea &area, SheetTask *task) const;
    Result<bool, TaskError> applyRange(SheetTask *task);
    Result<bool, TaskError> findTable(const QString &name, SheetTask *task);
    bool findName(const QString &name, SheetTask *task) const;
    /// One sheet with its scan: the whole work for a file.
    Result<SheetTask, TaskError> makeTask(size_t sheet);
    /// Scan again with sorted rows if they turn out not to be in order.
    sheet::WorkbookResult<void> scan(SheetTask *task);
    /// Charts and dialogs have none.
    bool hasCells(size_t sheet) const;

    const ReadExcelParams &m_params;
    sheet::WorkbookReader &m_reader;
    Fault<sheet::WorkbookError> m_fault{sheet::WorkbookError::Damaged};
    QString m_skippedChart;
};

} // namespace corvanta
