// One workbook of a run: delivers the rows of its sheets.
//
// The scan has chosen the sheets and the columns of the table. If it ended after its sample, a
// later cell may not fit the type of its column; it fails the run.
#pragma once
#include "actions/shared/file_series.h"
#include "actions/workbook/open_workbook.h"
#include "actions/workbook/sheet_task.h"

#include <atomic>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta {

/// A sheet of the workbook and where its cells go.
struct SheetDelivery
{
    SheetTask task;
    std::vector<int> targets; ///< column of the table by column of the scan; -1: left out
};

/// Threads: see SeriesFile.
class WorkbookFile final : public SeriesFile
{
public:
    /// The sheets are delivered in the order of `sheets`. `types` are those of the table's columns.
    /// `sheetNameColumn`: column for the name of the sheet, after them; -1: none.
    WorkbookFile(ActionBase &action, QString name, OpenWorkbook workbook,
                 std::vector<SheetDelivery> sheets, std::vector<cell::Type> types,
                 int sheetNameColumn);
    ~WorkbookFile() override;

    /// `row` is the same one each time: its cells are those of the last call. Returns false when
    /// the run has failed.
    bool next(OneRow &row, Found *found) override;
    /// Warns about repairs in a sheet that is not read to its end.
    void beforeClose() override;
    /// From any thread; updated from time to time only.
    float fractionDone() const override;
    void stop() override { m_workbook.reader->stop(); }

private:
    const SheetDelivery &sheet() const { return m_sheets[m_sheet]; }
    // Functions that return a bool return false when the run has failed.

    /// Start the walk over the next sheet.
    bool openSheet();
    /// Warn about repairs, and go to the next sheet. Fails for rows that were not in order.
    bool closeSheet();
    /// Publish the fraction from time to time; each sheet weighs the same.
    void updateFraction();
    /// Deliver a row with cells; of a gap only count the empty rows, which next() delivers.
    bool take(const WalkStep &step, OneRow &row, Found *found);
    /// Fails for a cell after the sample whose type does not fit its column.
    bool putRow(const WalkStep &step, OneRow &row);
    /// Fails if the cells repeat texts without a limit.
    bool checkTexts();
    // Make cells missing: those that the last row has set, and set the name of the sheet.
    void clearRow(OneRow &row);
    void clearCells(OneRow &row);
    /// Fail the run for a cell.
    bool doesNotFit(const WalkStep &step, const sheet::SheetCell &cell);
    /// Fail the run because the workbook cannot be read further.
    bool fail(const Fault<sheet::WorkbookError> &fault);
    /// What the reader repaired: one warning for each kind, with count and first place.
    void warnProblems(const sheet::SheetProblems &problems);

    ActionBase &m_action;
    const QString m_name;
    OpenWorkbook m_workbook;
    const std::vector<SheetDelivery> m_sheets;
    const std::vector<cell::Type> m_types;
    const int m_sheetNameColumn;
    RowBuffer m_sheetNameBuffer{0};
    const uchar *m_sheetNameCell = nullptr; // in the buffer

    size_t m_sheet = 0;                    // the one that is open or opened next
    std::unique_ptr<SheetWalker> m_walker; // of the open sheet
    qint64 m_emptyRows = 0;                // still to be delivered
    std::vector<int> m_filled;             // columns of the row that have a cell
    std::atomic<float> m_fraction = 0;
    qint64 m_rows = 0;
    qint64 m_textUnits = 0; // of the cells that were delivered, UTF-16
    const qint64 m_maxTextUnits;
};

} // namespace corvanta
