// The rows of one sheet of a legacy workbook.
#pragma once
#include "codecs/xls/cell_records.h"
#include "codecs/xls/sheet_scan.h"

#include <atomic>

namespace corvanta::xls {

/// What the rows of a sheet need from their workbook, which outlives them.
struct SheetSource
{
    RecordReader &reader;
    const TextReader &rules;
    const SharedTexts &shared;
    const std::atomic<bool> &stop;
};

/// Delivers rows in ascending order. Cells that are stored in order are decoded as they are read;
/// otherwise the sheet is kept in memory and its cells are sorted by row.
class BiffRows final : public sheet::SheetRows
{
public:
    /// `forms` is copied. A scan without cells gives no rows. Call open() first.
    BiffRows(const SheetSource &source, CellForms forms, SheetScan scan);

    /// Prepare the first row. Errors: TooLarge, ReadFailed, Stopped.
    sheet::WorkbookResult<void> open();

    sheet::WorkbookResult<bool> next(sheet::SheetRow *row) override;
    double fractionDone() const override { return m_fraction.load(std::memory_order_relaxed); }
    const sheet::SheetProblems &problems() const override { return m_problems; }

private:
    // Decode the cells of the next row into m_cells, and set m_row.

    /// From the records as they are stored, until the row changes.
    void readOrdered();
    /// From the places in m_sorted.
    void readSorted();
    /// Go to the next cell record of the sheet. Returns false at its end.
    bool nextCell(Record *record);
    /// The end of the rows, or the fault that ended them.
    sheet::WorkbookResult<bool> finish() const;
    /// Publish how much of the sheet has been read.
    void updateFraction();

    SheetSource m_source;
    CellForms m_forms;
    SheetScan m_scan;
    sheet::SheetProblems m_problems;
    CellDecoder m_decoder;
    RowCells m_cells;
    std::vector<CellPlace> m_sorted; // empty for a sheet in order
    size_t m_nextSorted = 0;         // index in m_sorted
    int m_row = -1;                  // of m_cells; -1: there are no more
    std::atomic<double> m_fraction = 0;
};

} // namespace corvanta::xls
