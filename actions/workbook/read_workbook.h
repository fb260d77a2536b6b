// Base of readExcel and readExcelOld: reads sheets of workbooks as one table.
//
// The run begins with a scan of all files, which decides the columns: their names must be known
// before the first row, and their types must hold every cell. Then FileSeries delivers the rows. A
// single file stays open in between; of several each is opened again, so that the number of open
// files does not grow with theirs.
#pragma once
#include "actions/shared/file_series.h"
#include "actions/workbook/open_workbook.h"
#include "actions/workbook/read_excel_params.h"
#include "actions/workbook/sheet_task.h"
#include "actions/workbook/table_columns.h"
#include "corvanta/action_base.h"

#include <map>
#include <mutex>
#include <optional>

namespace corvanta {

/// Threads: the one that runs the action; computeCompletion() and wakeAll() from any.
class ReadWorkbook : public ActionBase, private FileSeries::Format
{
public:
    /// Fraction of all files, each weighing the same.
    float computeCompletion() override { return m_series.fractionDone(); }
    QStringList inputs() const override
    {
        return readerParams().fileNameFromPin ? QStringList() : ActionBase::inputs();
    }
    void wakeAll() override;
    QVector<ParameterProblem> problems() const override;
    /// Scans the first file.
    std::optional<QVector<ColumnKind>> columnKinds(KindExtent extent) override;

protected:
    using ActionBase::ActionBase;

    /// The parameters as they are saved, not expanded.
    virtual const ReadExcelParams &readerParams() const = 0;
    virtual ReadExcelParams &readerParams() = 0;
    /// How to open a workbook; constant.
    virtual const WorkbookFormat &workbookFormat() const = 0;

private:
    /// A file that is scanned.
    struct PlannedFile
    {
        std::vector<SheetTask> tasks;
        std::vector<TaskColumns> columns;     ///< of each task
        std::optional<OpenWorkbook> workbook; ///< kept open if it is the only file
    };

    /// The parameters with the values of variables in their texts.
    ReadExcelParams expandedParams() const;
    void start() override;
    bool step() override { return (m_series.hasBegun() || prepare()) && m_series.step(); }
    void finish() override;
    /// The first file, for use outside a run; null if there is none or it is a pipe.
    std::unique_ptr<InputFile> openFirst() const;
    bool fill(int sheet) override;
    QVector<InputTable> listTables() override;

    // Before the first row. Functions that return a bool return false when the run has failed or
    // ended.
    /// Scan all files, decide the columns and start the series.
    bool prepare();
    bool listFiles(QStringList *files);
    /// Scan the files and decide the types of the columns.
    bool planFiles(const QStringList &files);
    /// Scan one file. With `keepsOpen` its workbook stays open for the rows.
    bool planFile(const QString &name, bool keepsOpen);
    std::optional<OpenWorkbook> openWithRetries(const QString &name);
    bool reportOpenFault(const QString &name, const Fault<WorkbookOpenError> &fault);
    /// Choose the sheets of a workbook and scan them.
    bool makeTasks(const QString &name, const OpenWorkbook &workbook, PlannedFile *file);
    bool reportTaskFault(const QString &name, const Fault<TaskError> &fault,
                         const Fault<sheet::WorkbookError> &why, const ByteSource &source);
    /// Join the columns of the sheets of a file with those of the table.
    bool addColumns(const QString &name, const PlannedFile &file);
    /// Refuse a sheet that is nearly empty and enormous.
    bool checkSize(const QString &name, const SheetTask &task, const TaskColumns &columns);
    /// Warn about error cells and about columns that are left out.
    void warnColumns(const QString &name, const SheetTask &task, const TaskColumns &columns);
    /// Log which columns are text because of a few of their values.
    void noteMixed(const SheetTask &task, const TaskColumns &columns);
    void warnLateTexts();
    /// The warning about a sheet name that has no effect; empty if it has one.
    QString unusedName() const;
    /// Let wakeAll() stop this reader; null when the scan is done.
    void setScanned(sheet::WorkbookReader *reader);
    void startSeries();

    // Messages of FileSeries. They return true to continue with the next file.
    FileSeries::Opened openFile(const QString &name) override;
    bool reportMissing(const QString &name) override;
    bool reportUnreadable(const QString &name) override;
    /// Not called: the columns are known before the files are opened.
    bool reportMismatch(const ColumnMismatch &) override { return false; }

    /// With expanded texts.
    ReadExcelParams m_run;
    QStringList m_files; ///< planned ones
    /// By name.
    std::map<QString, std::shared_ptr<PlannedFile>> m_planned;
    TableColumns m_columns;
    int m_sheetNameColumn = -1;
    CappedLog m_mixedNotes{MainUI::Info, 20,
                           QStringLiteral("More columns are text because of a few values\n")};
    FileSeries m_series{*this};

    std::mutex m_mutex;
    sheet::WorkbookReader *m_scanned = nullptr; // guarded by m_mutex
};

} // namespace corvanta
