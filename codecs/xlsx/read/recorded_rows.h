// Keeps the rows of a sheet in memory, in a compact form, so that they need not be parsed again.
//
// An action reads a sheet twice: the types of all columns must be known before the first row. The
// second reading is several times as fast from here as from the packed markup.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/shared_strings.h"

#include <atomic>
#include <memory>
#include <vector>

namespace corvanta::xlsx {

/// What an own number of a text cell, SheetCell::number, means: 0 is a text of the sheet itself,
/// any other one is the number of a shared string, plus 1.
class RowRecording
{
public:
    RowRecording() = default;

    /// Add the row after those that are there. Its texts are copied, except shared strings.
    void add(const sheet::SheetRow &row);
    /// All rows are there.
    void finish(const sheet::SheetProblems &problems) { m_problems = problems; }

    /// Memory that the rows take.
    qint64 bytes() const { return m_bytes; }
    const sheet::SheetProblems &problems() const { return m_problems; }

private:
    friend class RecordedRows;

    /// The place for an item of at most `bytes`, on a new page if it does not fit.
    uchar *room(size_t bytes);
    // The parts of a row in the form that takeCell() reads.
    void put(const sheet::SheetCell &cell);
    void putNumber(const sheet::SheetCell &cell);
    void putText(const sheet::SheetCell &cell);

    std::vector<std::unique_ptr<uchar[]>> m_pages; // never move, as cells point into them
    uchar *m_at = nullptr;                         // where the last page continues
    uchar *m_end = nullptr;                        // of the last page
    qint64 m_bytes = 0;
    qint64 m_rows = 0;
    int m_column = -1; // of the last cell
    sheet::SheetProblems m_problems;
};

/// Delivers recorded rows. Threads: see sheet::SheetRows.
class RecordedRows final : public sheet::SheetRows
{
public:
    /// `strings` outlives the rows.
    RecordedRows(std::unique_ptr<RowRecording> recording, SharedStrings &strings);

    sheet::WorkbookResult<bool> next(sheet::SheetRow *row) override;
    /// Of the rows, not of the bytes.
    double fractionDone() const override;
    const sheet::SheetProblems &problems() const override { return m_recording->problems(); }

private:
    // Each takes an item at m_at and goes to the one after it.
    uchar takeTag();
    /// The column and the value after a tag.
    void takeCell(sheet::SheetCell *cell);
    /// A text of the sheet, or the number of a shared string.
    void takeText(sheet::SheetCell *cell);

    const std::unique_ptr<RowRecording> m_recording;
    SharedStrings &m_strings;
    size_t m_page = 0;
    const uchar *m_at = nullptr;
    std::atomic<qint64> m_rows = 0; // delivered
    std::vector<sheet::SheetCell> m_cells;
};

} // namespace corvanta::xlsx
