// How cells of sheets become cells of rows.
//
// A column has one type for all sheets: a key if all its cells are whole numbers that fit, a number
// if all are numbers, otherwise a text. The rules are the same for both formats of workbooks.
#pragma once
#include "actions/workbook/read_excel_params.h"
#include "base/cell.h"
#include "codecs/sheet/date_text.h"
#include "corvanta/row_buffer.h"

namespace corvanta {

/// What the cells of a column are; a set of bits.
enum ColumnContent : quint16 {
    kHasKeys = 1,       ///< whole numbers that a key can hold
    kHasNumbers = 2,    ///< numbers other than those of kHasKeys and kHasIntegers
    kHasTexts = 4,      ///< texts other than those of the bits below
    kHasDates = 8,      ///< dates that are read as texts
    kHasDateTimes = 16, ///< dates with times that are read as texts
    kHasTimes = 32,     ///< times of day that are read as texts
    kHasBooleans = 64,  ///< read as texts
    kHasOddTimes = 128, ///< durations, and dates that only worksheets have; read as texts
    kHasIntegers = 256, ///< whole numbers below 2^53 that a key cannot hold
};
/// The bits of what is read as text.
inline constexpr quint16 kAllTexts =
    kHasTexts | kHasDates | kHasDateTimes | kHasTimes | kHasBooleans | kHasOddTimes;
/// The bits of dates, with and without times.
inline constexpr quint16 kAllDates = kHasDates | kHasDateTimes;

/// The type that holds all these cells. Without any it is a text.
cell::Type typeOf(quint16 content);

/// The rules for one workbook. Threads: pure.
struct ValueRules
{
    bool datesAreTexts = true;  ///< ISO 8601; otherwise serials, which are numbers
    bool errorsAreTexts = true; ///< otherwise missing
    bool uses1904 = false;      ///< see WorkbookReader

    /// The bit of ColumnContent for the cell; 0 for one that is missing in every column.
    quint16 contentOf(const sheet::SheetCell &cell) const;
    /// The cell as a row cell of the type. Null is a missing cell. `type` holds the cell's content.
    /// The bytes are in `buffer` and valid until it is reset.
    const uchar *cellFor(const sheet::SheetCell &cell, cell::Type type, RowBuffer *buffer) const;
    /// The cell as text, as in a text column; empty for a missing one.
    QString textOf(const sheet::SheetCell &cell) const;

private:
    /// The number of a cell that is read as a number.
    double numberOf(const sheet::SheetCell &cell) const;
    // Put a text at `out`, which has room for sheet::kDateTextUnits. The result is its length.

    int putText(const sheet::SheetCell &cell, char16_t *out) const;
    int putNumber(const sheet::SheetCell &cell, char16_t *out) const;
};

} // namespace corvanta
