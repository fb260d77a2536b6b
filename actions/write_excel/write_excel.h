// writeExcel: writes the rows of its input pin into one worksheet of a new or an existing workbook.
//
// Stages of a run:
//
//     start              -> check floatToString and the compression
//     first row          -> find columns, open the workbook, write all that precedes the rows
//     rows               -> format them into the sheet; worker threads compress it; count losses
//     end                -> end the sheet, write the other parts, replace the destination
//     runExcel           -> have a spreadsheet program calculate the destination
//
// Nothing but the last two stages changes the destination. An update in place (modes 1 and 2) keeps
// the earlier workbook under a second name until the new one has its name (io/replace/file_swap.h).
#pragma once
#include "actions/shared/row_writer.h"
#include "actions/write_excel/write_excel_params.h"
#include "base/occurrences.h"
#include "codecs/sheet/column_meter.h"
#include "codecs/sheet/sheet_writer.h"
#include "codecs/xlsx/updated_workbook.h"
#include "io/package_file/package_file.h"

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

namespace corvanta {

extern const ActionEntry kWriteExcelEntry;

/// The action is parameters, messages and stages; `codecs/xlsx` writes the workbook.
///
/// begin() opens the workbook (NewWorkbook in mode 0, UpdatedWorkbook in the others), writes
/// everything before the rows, and creates the SheetWriter. writeRow() adds rows. complete() writes
/// the rest and replaces the destination. Until then the destination is unchanged.
class ActionWriteExcel final : public ParamAction<ActionWriteExcel, WriteExcelParams, RowWriter>
{
public:
    ActionWriteExcel(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteExcelParams> &paramTable() { return writeExcelParamTable(); }
    QVector<TargetUse> targets() const override;
    /// The workbook to copy, unless it is the one that is written.
    QStringList inputs() const override;
    static void adjustDefaults(WriteExcelParams &params, double savedVersion)
    {
        adjustWriteExcelDefaults(params, savedVersion);
    }
    QVector<ParameterProblem> problems() const override;
    bool needsColumnKinds() const override
    {
        return m_params.toDate.isEmpty() && m_params.toDateTime.isEmpty() &&
               m_params.toTime.isEmpty() && m_params.toBoolean.isEmpty() && m_params.isoDates &&
               m_params.dateFormat.isEmpty();
    }
    void setColumnKinds(const QVector<ColumnKind> &columns) override;

private:
    /// Cells of one column that are left out or cut.
    struct ColumnLosses
    {
        Occurrences notDates;
        Occurrences earlyDates;
        Occurrences longFractions;
        Occurrences zones;
        Occurrences notFinite;
        Occurrences cutTexts;
        Occurrences oddTexts;
    };
    /// State of one run; recreated by start().
    struct RunState
    {
        // Expanded name of the workbook that an update reads.
        QString source;
        // begin() was called.
        bool hasBegun = false;
        // The warning about the number of rows is logged.
        bool isTooLongKnown = false;
        // Texts of this run that are too long for a cell.
        int longCells = 0;
        // By column of the sheet.
        std::vector<ColumnLosses> losses;
        // Of the columns.
        xlsx::MoreFormats formats;
        // First sheet row written, from 1: the header, or the first row without one.
        qint64 firstRow = 1;
        // Of the first sheet, once its rows are written.
        std::optional<xlsx::NamedRange> range;
        // Name of the first sheet, once the rows continue in another one.
        QString continuedSheet;
        // Measures the first rows, until the widths of the columns are set.
        std::optional<sheet::ColumnMeter> meter;
        deflate::StreamOptions compression;
        // Of a workbook that is updated. Before the others: released when all are closed.
        TargetLock lock;
        // Each object uses those before it, so that they are destroyed in the reverse order. The
        // input exists only for an update, the others from openSheet() to complete().
        std::unique_ptr<PackageInput> input;
        PackageOutput output;
        std::unique_ptr<opc::MemberWriter> members;
        std::unique_ptr<sheet::DateParser> dates;
        std::unique_ptr<xlsx::WorkbookTarget> workbook;
        std::unique_ptr<sheet::SheetWriter> sheet;
    };

    const RowWriterParams &rowParams() const override { return m_params; }
    const QString &fileParameter() const override { return m_params.fileNameDestination; }
    QString message(WriteProblem problem, const QString &name) const override;
    void start() override;
    bool begin(const OneRow &columns) override;
    bool beginWithoutRows(const OneRow &columns) override;
    bool writeRow(const OneRow &row) override;
    void complete() override;
    void release(bool wasComplete) override;

    // Parts of problems(), in write_excel_report.cpp.
    QVector<ParameterProblem> dateProblems() const;
    QVector<ParameterProblem> nameProblems() const;
    QVector<ParameterProblem> lookProblems() const;

    // Functions that return bool return true for success; otherwise they have failed the run.
    /// Problems: BadFloatFormat.
    bool setFloatFormat();
    /// Check the parameters of the look.
    bool checkLook();
    /// Take the level of compression that the run was started with, if any.
    bool setCompression();
    /// The format of date texts for the parameter dateFormatType.
    QString qtDateFormat() const;
    /// The same for messages; empty if no text is a date.
    QString dateFormatName() const;
    bool readsIsoDates() const { return m_params.isoDates && qtDateFormat().isEmpty(); }
    /// Determine how a column is written from the parameters and the type of its input.
    bool decideKind(const OneRow &row, sheet::Column *column);
    /// Whether the list names the column, whose type must be text. A column of another type keeps
    /// it.
    static bool isText(const OneRow &row, const sheet::Column &column, const QStringList &list);
    /// The formats of dates that the columns need.
    xlsx::MoreFormats formatsFor(const std::vector<sheet::Column> &columns) const;
    /// Write everything of the workbook that precedes the rows. A new sheet whose widths depend on
    /// its first rows is begun by beginSheet().
    bool openSheet(std::vector<sheet::Column> columns);
    /// Set the look of new sheets, and prepare to measure the columns.
    void setLook(const std::vector<sheet::Column> &columns);
    /// The widths that the parameters give.
    std::vector<double> columnWidths(const std::vector<sheet::Column> &columns);
    /// Create the writer of the sheet whose member is open.
    void makeSheetWriter(std::vector<sheet::Column> columns);
    bool putHeader();
    /// Write the head of the sheet with the measured widths, and then the rows that were held.
    bool beginSheet();
    /// Continue the rows in a new sheet.
    bool continueInNextSheet();
    /// The next row is beyond the last one that programs read.
    bool takeFullSheet();
    /// Count a row for the widths of the columns.
    bool measure(const OneRow &row);
    /// Write the rest of the sheet.
    bool endSheet();
    sheet::SheetOptions sheetOptions() const;
    /// Fail the run for a fault of the sheet.
    bool checkSheet(const Result<void, sheet::Error> &result);
    /// Write everything after the rows.
    bool completeWorkbook();
    bool checkSource();
    /// The defined name and the recalculation that the parameters request.
    xlsx::WorkbookEnd workbookEnd();
    /// The rows of the sheet that the defined name covers, if it covers any.
    std::optional<xlsx::NamedRange> namedRange();

    // Warnings, in write_excel_report.cpp.
    /// Called for each cell that cannot be written as it is.
    void takeCellProblem(sheet::CellProblem problem, int column, std::u16string_view text);
    /// Called for each text beyond the limit of a cell. Logs a limited number of warnings.
    void warnLongCell();
    /// Names of the lists ToDate and ToFormula that the input does not have.
    void reportMissingNames(const OneRow &columns);
    void reportMissingNames(const OneRow &columns, const char *list, const QStringList &names);
    /// Widths for more columns than there are.
    void reportExtraWidths(size_t widths, size_t columns);
    /// The rows continue in another sheet, which a defined name does not cover.
    void reportNextSheet(const QString &full, const QString &next, bool isFirst);
    /// A date format that loses the century.
    void reportShortYears(const std::vector<sheet::Column> &columns);
    /// Names that spreadsheet programs reject; `others` are those that the workbook has.
    void reportSheetName(const QString &name, const QStringList &others);
    void reportRangeName(const QStringList &others);
    /// What takeCellProblem() has counted.
    void reportCells();
    void reportCells(const Occurrences &cells, const QString &noun, const QString &column,
                     const QString &problem);
    /// Rows that another action of this run has written, before they are replaced.
    void reportReplacedRows(const QString &sheet, qint64 startRow1);
    /// What does not fit the sheet: hyperlinks, tables, merged ranges. After its last row.
    void reportSheet();
    /// A run without rows that wrote no file.
    void reportNoFile();
    QString reasonOfNoFile() const;
    /// The rows of the sheet that this run wrote.
    xlsx::WrittenCells writtenCells() const;

    // The workbook and the sheet to write to, in write_excel_target.cpp.
    /// Set m_run->workbook and open the output file.
    bool openWorkbook();
    /// Open the workbook to copy already at the start, so that it is copied as it was then: other
    /// actions may replace it during the run. What cannot be opened is tried again with the first
    /// row, which reports it.
    void openCopySource();
    /// Take the lock of the destination, after releasing it if it is held.
    bool lockDestination();
    /// Open the temporary file. Problems: CannotOpen.
    bool openOutput();
    bool openNewWorkbook();
    /// Read the source, select its sheet and add cell formats; then open the output.
    bool openUpdate();
    /// Select the sheet of an update by the parameters of the modes 2 and 4.
    bool chooseSheet(xlsx::UpdatedWorkbook &workbook);
    // A number outside the workbook is an error; a missing name may add a sheet.
    bool chooseByNumber(xlsx::UpdatedWorkbook &workbook);
    bool chooseByName(xlsx::UpdatedWorkbook &workbook);
    /// Whether the parameters ask for a new sheet; a missing one may be added as well.
    bool addsSheet() const;
    /// Write to the sheet with this index, from 0.
    bool changeSheet(xlsx::UpdatedWorkbook &workbook, qsizetype index);
    /// Add a sheet; its name gets a number if it is taken.
    void addSheet(xlsx::UpdatedWorkbook &workbook);
    /// The name of a new sheet, cut with a warning if it is too long.
    QString makeSheetName();
    /// Add the formats of dates and hyperlinks; a failure is a warning.
    void addCellFormats(xlsx::UpdatedWorkbook &workbook);
    /// Fail the run with the message for a fault of a package. A run that was stopped has none.
    bool failWorkbook(const Fault<opc::Error> &fault);
    /// Why the workbook cannot be read or written, in words.
    QString reasonFor(const Fault<opc::Error> &fault) const;

    // The replacement of the destination, in write_excel_target.cpp.
    /// Whether an existing workbook is read. Numbers outside the enumeration create one.
    bool isUpdate() const
    {
        return m_params.mode > WorkbookMode::Create &&
               m_params.mode <= WorkbookMode::CopyAndChangeSheet;
    }
    /// Whether the workbook that is read is also the one that is replaced.
    bool updatesInPlace() const
    {
        return m_params.mode == WorkbookMode::AddSheet ||
               m_params.mode == WorkbookMode::ChangeSheet;
    }
    /// The same for a copy onto itself too.
    bool replacesItsSource() const;
    /// The number by which the codec knows the format of date cells.
    int dateFormat() const { return static_cast<int>(m_params.dateFormatExcel); }
    /// Whether that format shows date and time.
    bool showsTime() const;
    /// The width of a date column, in digits.
    int dateDigits(sheet::Column::Kind kind) const;
    /// Replace the destination by the finished package.
    bool commit();
    /// Swap without a finished package, for a run without rows.
    void swapNothing();
    /// Rename the target to a second name and the package to the target, with retries. `reason` is
    /// why it fails; empty: the reason of the system.
    bool swap(const QString &temporary, const QString &target, const QString &reason = {});
    /// Wait, but not beyond the end of the run. Returns false when it has ended.
    bool pause(int pauseMs) const;
    /// Have a spreadsheet program calculate the workbook; a failure is a warning.
    void recalculate();

    FloatFormat m_floatFormat;
    std::unique_ptr<RunState> m_run;
};

} // namespace corvanta
