// The parameters of writeExcel.
#pragma once
#include "actions/shared/params/sheet_selection.h"
#include "actions/shared/row_writer.h"

namespace corvanta {

/// What is written. Any other number means a new workbook. The last two read the source and write
/// the destination; AddSheet and ChangeSheet read and replace the destination.
enum class WorkbookMode { Create, AddSheet, ChangeSheet, CopyAndAddSheet, CopyAndChangeSheet };

/// Format in which dates are read from text cells: the parameter dateFormat, or one of the user's
/// locale. Any other number means an empty format.
enum class DateInput {
    Own,
    SystemShortDate,
    SystemLongDate,
    SystemShortTime,
    SystemLongTime,
    SystemShortDateTime,
    SystemLongDateTime
};

/// Number format of date cells in the sheet. The codec knows the formats by the same numbers.
enum class DateDisplay {
    Date,
    DateMinutes,
    DateSeconds,
    SystemDateTime,
    SystemDate,
    DayMonthYear,
    DayMonth,
    MonthYear,
    Minutes12,
    Seconds12,
    Minutes24,
    Seconds24
};

// Names of parameters, for messages about them.
inline constexpr char kNamedRange[] = "namedRange";
inline constexpr char kDateFormat[] = "dateFormat";
inline constexpr char kToFormula[] = "ToFormula";
inline constexpr char kHeaderStyle[] = "headerStyle";
inline constexpr char kColumnWidths[] = "columnWidths";
inline constexpr char kColumnFormats[] = "columnFormats";
inline constexpr char kOverflow[] = "overflow";

/// Texts that are expanded may contain variables of the graph.
struct WriteExcelParams : RowWriterParams
{
    WorkbookMode mode = WorkbookMode::Create;
    // Names of workbooks; expanded. Only the copying modes use the source.
    QString fileNameSource;
    QString fileNameDestination;
    /// How a sheet to change is found. Any other number adds a sheet.
    SheetSelection sheetMode = SheetSelection::ByName;
    /// Number of the sheet, from 1; expanded.
    QString sheetIdx = QStringLiteral("1");
    /// Name of the new sheet or of the sheet to change; expanded. A new name is cut to 31 units.
    QString sheetName = QStringLiteral("Sheet1");
    /// First row to write in a changed sheet, from 1; expanded. A text that is not a number, or one
    /// below 1, appends the rows.
    QString startRow = QStringLiteral("1");
    /// Defined name for the written cells; empty: none.
    QString namedRange;
    /// The defined name includes the header row.
    bool nrIncludeTitleRow = false;
    /// printf format of finite decimal numbers; empty: the shortest form.
    QString floatToString = QStringLiteral("%.16g");
    /// A missing workbook or sheet is created; off: it fails the run.
    bool createIfNotExists = true;
    /// An updated workbook is calculated when it is opened.
    bool forceRecompute = true;
    /// Write a header row.
    bool firstLineContainsColumnNames = true;
    /// NaN and infinite numbers give no cell; off: they become texts.
    bool noNans = true;
    /// Saved with the graph; changes nothing, because the numbers of a sheet have a point.
    bool useComma = false;
    /// Write a workbook with a header row even if there is no row.
    bool alwaysWrite = false;
    /// Texts that start with "=" are formulas, in all columns.
    bool equalisFormula = false;
    /// A spreadsheet program calculates and saves the finished workbook.
    bool runExcel = false;
    /// Count dates before March 1900 as spreadsheet programs do: one less.
    bool excelHack = true;
    /// Texts of the form URL("label","url") are hyperlinks.
    bool urlTag = false;
    /// Cut texts below 32768 characters; off: a warning for each, up to a limit.
    bool crop = false;
    DateInput dateFormatType = DateInput::Own;
    /// Used with DateInput::Own; expanded.
    QString dateFormat;
    /// With an empty format, dates in the form of ISO 8601 are read.
    bool isoDates = false;
    /// Texts of date columns that are not dates, or too early, are written as texts. Off: not at
    /// all.
    bool keepOddDates = false;
    DateDisplay dateFormatExcel = DateDisplay::Date;
    /// Date columns of a new sheet are wide enough for their format.
    bool dateWidths = false;
    // The look of new sheets; see write_excel_look.h for the texts.
    QString headerStyle;
    bool freezeHeader = false; ///< the header row stays visible
    bool autoFilter = false;   ///< the header cells have filter buttons
    QString columnWidths;
    /// What happens after the last row of a sheet: empty or "newSheet".
    QString overflow;
    QStringList columnFormats; ///< COLUMN=FORMAT
    /// Appended rows get the cell formats of the last row of the sheet.
    bool keepStyles = false;
    // Names of columns; names that the input lacks give a warning. A column in both lists is a
    // date.
    QStringList toDate;
    // Columns of other types than text keep their type; texts without the form stay texts.
    QStringList toDateTime; ///< ISO 8601, whatever dateFormat says
    QStringList toTime;     ///< of day
    QStringList toBoolean;
    QStringList toFormula; ///< must be text columns
};

/// Attributes of `writeExcel`, then its child elements.
const ParamTable<WriteExcelParams> &writeExcelParamTable();

/// Set the defaults of graphs that were saved with `savedVersion`, before they are read.
void adjustWriteExcelDefaults(WriteExcelParams &params, double savedVersion);

} // namespace corvanta
