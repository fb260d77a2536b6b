// The workbook readers' common interface: sheets, and their rows as a stream.
//
// Each workbook format implements it; the actions know no other one. Rows and columns count from 0.
// Calls are virtual per row and never per cell.
#pragma once
#include "base/occurrences.h"
#include "base/result.h"

#include <QString>

#include <array>
#include <limits>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <vector>

namespace corvanta::sheet {

/// Why a workbook or a sheet cannot be read. The detail of a fault is the place and the cause in
/// words; its offset is that of the byte in the member or stream that the detail names.
enum class WorkbookError : quint8 {
    NotAWorkbook, ///< neither a damaged nor an unsupported workbook: something else
    Encrypted,    ///< needs a password
    Unsupported,  ///< a valid workbook of a kind or version that is not read
    Damaged,      ///< contradicts its format; the rows before it are correct
    TooLarge,     ///< needs more memory than a reader may take
    ReadFailed,   ///< the source failed
    Stopped,      ///< stop() was called
};

template <class T> using WorkbookResult = Result<T, WorkbookError>;

/// What a cell holds. A cell without a value is not delivered, also when it has a style.
enum class CellKind : quint8 {
    Number,  ///< `number`; `form` says how programs show it
    Text,    ///< `text`, which may be empty
    Boolean, ///< `number`, 0 or 1
    Error,   ///< `text`, such as #N/A, as programs show it
    IsoDate, ///< `text`, a date or a time as ISO 8601, as the file has it
};

/// How programs show a number. All except General are serials: days since the workbook's first day.
enum class NumberForm : quint8 {
    General,  ///< a number, an amount, a percentage...
    Date,     ///< without a time
    Time,     ///< a time of the day, without a date
    DateTime, ///< with a time
    Duration, ///< hours, minutes or seconds beyond 24 hours, as [h]:mm
};

/// One cell with a value.
struct SheetCell
{
    int column = 0;
    CellKind kind = CellKind::Number;
    NumberForm form = NumberForm::General; ///< of Number
    /// Of Number and Boolean. For other kinds it means something only to the reader.
    double number = 0;
    std::u16string_view text; ///< of the others; valid as long as the row
};

/// One row, valid until the next one is read.
struct SheetRow
{
    qint64 number = 0;
    bool isHidden = false;
    /// In ascending order of their columns, each column once.
    std::span<const SheetCell> cells;
};

/// A rectangle of cells; all bounds are inclusive. An open end has the largest value.
struct CellArea
{
    qint64 firstRow = 0;
    qint64 lastRow = std::numeric_limits<qint64>::max();
    int firstColumn = 0;
    int lastColumn = std::numeric_limits<int>::max();
};

enum class SheetKind : quint8 { Worksheet, Chart, Macro, Dialog };
enum class SheetVisibility : quint8 { Visible, Hidden, VeryHidden };

struct SheetInfo
{
    QString name;
    SheetKind kind = SheetKind::Worksheet; ///< only worksheets and macro sheets have cells
    SheetVisibility visibility = SheetVisibility::Visible;
};

/// A defined name. Names of macros and functions are left out.
struct DefinedName
{
    QString name;
    int scope = -1; ///< index of the only sheet that knows the name; -1: all know it
    int sheet = -1; ///< index of the sheet with the area; -1 without an area
    /// The area of the name, if it has one area of one sheet.
    std::optional<CellArea> area;
};

/// A table of a sheet. The columns' names are also the texts of the header row.
struct TableInfo
{
    QString name;
    int sheet = 0;
    CellArea area; ///< with the header row and the rows of totals
    bool hasHeader = true;
    int totalsRows = 0; ///< rows at the end that are not data
};

/// What a sheet has apart from its cells.
struct SheetLayout
{
    std::vector<CellArea> merged;
    std::vector<CellArea> hiddenColumns; ///< areas of whole columns, in any order
};

/// What a reader repaired or left out. Each is counted, with its first place such as "cell B7".
enum class SheetProblem : quint8 {
    BadReference, ///< a cell without a valid reference; it follows the one before it
    BadValue,     ///< a value that its cell's kind cannot have; the cell is delivered as a text
    NoSuchText,   ///< the number of a shared text that does not exist; the cell is left out
    RepeatedCell, ///< a second cell at one place; the last one counts
    RowOrder,     ///< a row that does not follow the one before it
    OutOfSheet,   ///< a cell beyond the last column or row that the format has; left out
    BadText,      ///< bytes that are invalid in the file's encoding; replaced
    NoResult,     ///< a formula whose result the file does not store; left out
};
inline constexpr size_t kSheetProblems = 8;
using SheetProblems = std::array<Occurrences, kSheetProblems>;

/// The rows of one sheet, in the order of the file: usually ascending, but rows out of order are
/// delivered as they come. Rows without cells may be left out or delivered without cells.
///
/// Destroy it before its workbook, at any time: also before the end. Threads: one at a time, except
/// where stated.
class SheetRows
{
public:
    SheetRows() = default;
    SheetRows(const SheetRows &) = delete;
    SheetRows &operator=(const SheetRows &) = delete;
    virtual ~SheetRows() = default;

    /// Read the next row. Returns false at the end. After a fault no more rows can be read.
    virtual WorkbookResult<bool> next(SheetRow *row) = 0;

    /// Fraction of the sheet that has been read, 0 to 1. Any thread.
    virtual double fractionDone() const = 0;

    /// What has been repaired so far. Indexed by SheetProblem.
    virtual const SheetProblems &problems() const = 0;
};

/// An open workbook. Reads the list of sheets when it is opened, and everything else when it is
/// asked for. Threads: one at a time, except stop().
class WorkbookReader
{
public:
    WorkbookReader() = default;
    WorkbookReader(const WorkbookReader &) = delete;
    WorkbookReader &operator=(const WorkbookReader &) = delete;
    virtual ~WorkbookReader() = default;

    /// All sheets in the order of the workbook.
    virtual const std::vector<SheetInfo> &sheets() const = 0;
    /// Whether serial 0 is 1904-01-01. Otherwise serial 1 is 1900-01-01, and 60 the day
    /// 1900-02-29 that never was.
    virtual bool uses1904() const = 0;
    virtual const std::vector<DefinedName> &definedNames() const = 0;
    /// All tables of all sheets. Like layout(), not while a sheet is open.
    virtual WorkbookResult<std::vector<TableInfo>> tables() = 0;
    /// What sheet `index` has apart from its cells. May read the whole sheet.
    virtual WorkbookResult<SheetLayout> layout(size_t index) = 0;
    /// Read sheet `index` from its start. A sheet without cells gives no rows. At most one sheet is
    /// open at a time.
    virtual WorkbookResult<std::unique_ptr<SheetRows>> openSheet(size_t index) = 0;

    /// End every wait and every long work soon, with Stopped. Any thread.
    virtual void stop() = 0;
};

} // namespace corvanta::sheet
