// Reads the rows of a worksheet part (ECMA-376 part 1, 18.3.1).
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/cell_scan.h"
#include "codecs/xlsx/read/part_text.h"
#include "codecs/xlsx/read/shared_strings.h"
#include "codecs/xlsx/read/sheet_layout.h"

#include <memory>
#include <vector>

namespace corvanta::xlsx {

/// Threads: see sheet::SheetRows.
/// Reads the elements of a part one after the other, and keeps one row. Cells of the usual form are
/// recognised by a fast scan (cell_scan.h); others, and damaged ones, are parsed as markup. What is
/// repaired while reading is counted in problems().
class SheetScanner final : public sheet::SheetRows
{
public:
    /// `strings` and `forms`, the forms of the cell formats by their index, outlive the scanner.
    SheetScanner(std::unique_ptr<PartText> part, SharedStrings &strings,
                 const std::vector<sheet::NumberForm> &forms);

    /// Errors: those of the part, TooLarge.
    sheet::WorkbookResult<bool> next(sheet::SheetRow *row) override;
    double fractionDone() const override { return m_part->fractionDone(); }
    const sheet::SheetProblems &problems() const override { return m_problems; }

    /// Read everything of the sheet except its cells. Instead of next().
    sheet::WorkbookResult<sheet::SheetLayout> readLayout() { return readSheetLayout(*m_part); }

    /// End a running call soon, with Stopped. Any thread.
    void stop() { m_part->stop(); }

private:
    /// Where the scan is.
    enum class Place : quint8 { Front, Rows, Tail };
    /// A text of the row that is read: its units are in m_texts.
    struct PendingText
    {
        size_t cell;
        size_t begin;
        size_t size;
    };
    using Done = sheet::WorkbookResult<void>;

    /// Skip what precedes the rows.
    Done enterRows();
    /// Go to the next row; false after the last one.
    sheet::WorkbookResult<bool> findRow();
    /// Take a start tag of the most usual form. False for any other one.
    bool takeUsualRow();
    /// Rows without a number follow the one before.
    void startRow(std::optional<QByteArrayView> number);
    /// An invalid number is counted, and the row follows the one before.
    void setRowNumber(QByteArrayView text);
    Done readCells();
    /// Take the cells of the usual form. Returns when another item follows.
    Done readUsualCells();
    /// Read an element of a row in the general way. False at the end of the row.
    sheet::WorkbookResult<bool> readItem();
    Done readUnusualCell(const opc::Tag &tag);
    /// Read the value of a cell and its end tag.
    Done readInside(RawCell *cell);
    Done addCell(const RawCell &cell);
    /// Set column and form. False if the cell has no place in the sheet and is left out.
    bool placeCell(const RawCell &cell, sheet::SheetCell *placed);
    Done setValue(const RawCell &cell, sheet::SheetCell *placed);
    // The values by type: number, number with an unusual text, shared string, and own text.
    void setNumber(const RawCell &cell, sheet::SheetCell *placed);
    void setOddNumber(const RawCell &cell, sheet::SheetCell *placed);
    Done setShared(const RawCell &cell, sheet::SheetCell *placed);
    void setText(QByteArrayView raw, sheet::SheetCell *placed);
    /// Point the cells to their texts in m_texts, which no longer moves.
    void finishCells();
    /// Sort cells that are out of order; of several in one column the last one remains.
    void orderCells();
    /// Count a repair; the first one keeps its place.
    void count(sheet::SheetProblem problem, int column);
    /// The name of a cell of the row that is read, such as B7.
    QString placeOf(int column) const;

    std::unique_ptr<PartText> m_part;
    SharedStrings &m_strings;
    const std::vector<sheet::NumberForm> &m_forms;
    sheet::SheetProblems m_problems;
    Place m_place = Place::Front;
    qint64 m_row = -1;        // number of the row that is read
    qint64 m_highestRow = -1; // of those before it
    bool m_isRowHidden = false;
    bool m_isRowEmpty = false;  // <row/>
    int m_column = -1;          // of the last cell
    size_t m_rowCells = 0;      // read of the row, also those that are left out
    bool m_isInOrder = true;    // the cells of the row
    bool m_isBadInline = false; // the last inline string has invalid bytes
    std::vector<sheet::SheetCell> m_cells;
    std::vector<char16_t> m_texts; // of the row
    std::vector<PendingText> m_pending;
    QByteArray m_value; // raw, of an unusual cell
};

} // namespace corvanta::xlsx
