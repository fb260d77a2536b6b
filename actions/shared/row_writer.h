// Base of the actions that write the rows of input pin 0 to files: what they all do alike.
//
// RowWriter takes the rows, copies them to output pin 0 (of actions that have one), selects those
// that `testCol` and `testValue` ask for, finds the columns to write, and ends the run. An action
// implements begin(), writeRow() and complete(), and has its message for each problem. Files are
// TargetFiles; targetOptions() connects them with the run.
//
//     start()            -> prepare, fail on bad parameters
//     first row          -> begin(its columns), writeRow() when it is selected
//     further rows       -> writeRow() for selected ones
//     end, no row came   -> beginWithoutRows(the pin's columns)
//     close              -> complete() when everything went well, then release() in any case
//
// An action is declared as `class ActionX : public ParamAction<ActionX, XParams, RowWriter>` where
// XParams is derived from RowWriterParams. Threads: as ActionBase.
#pragma once
#include "actions/shared/write_problem.h"
#include "base/target_lock.h"
#include "corvanta/action_base.h"
#include "corvanta/target_file.h"

#include <vector>

namespace corvanta {

/// The parameters that all writers of rows have.
struct RowWriterParams
{
    bool writeAllRows = true; ///< off: only rows whose text in testCol is testValue
    QString testCol;          ///< name of the column; a missing column is an error
    QString testValue;        ///< compared with the whole text, case-sensitive; may be empty
    bool writeAllColumns = true;
    QStringList toWrite; ///< names of the columns to write when writeAllColumns is off, in order
    bool checkNameCollision = true; ///< two written columns of one name are an error
    bool createDir = false;         ///< create the missing folders of the target
    /// How long a writer that locks its target waits for other programs that write to it, in
    /// seconds; negative: no limit.
    int timeOut = LockOptions::kTimeOut;
};

class RowWriter : public ActionBase
{
protected:
    using ActionBase::ActionBase;

    // What the action supplies.

    virtual const RowWriterParams &rowParams() const = 0;
    /// The parameter that names the file, as saved in the graph: not expanded.
    virtual const QString &fileParameter() const = 0;
    /// The message for a problem; `name` is the one that WriteProblem describes.
    virtual QString message(WriteProblem problem, const QString &name) const = 0;

    /// Prepare to write a table with these columns; called once per run. `columns` is the first
    /// row, selected or not, or a row without cells. Returns false after a failure.
    virtual bool begin(const OneRow &columns) = 0;
    /// Called in place of begin() when the pin had no row. By default nothing is written.
    virtual bool beginWithoutRows(const OneRow &) { return true; }
    /// Write a selected row. Returns false after a failure.
    virtual bool writeRow(const OneRow &row) = 0;
    /// Complete and commit the files: all rows are taken and the run is good. Called also when no
    /// row came. Logs its own failures.
    virtual void complete() = 0;
    /// Free what the run opened; a target that is not committed is discarded by its destructor.
    /// May be called twice. `wasComplete` is true when all rows were taken.
    virtual void release(bool wasComplete) = 0;

    /// Reset the state of an earlier run and expand the file name. An override calls this first.
    void start() override;

    // What the action uses.

    /// The expanded file name; the one in messages.
    const QString &fileName() const { return m_fileName; }
    /// The number of the input row that begin() or writeRow() got, from 1; rows that are not
    /// selected count too.
    qint64 rowNumber() const { return m_rowNumber; }
    /// Whether begin() or beginWithoutRows() has not been called in this run.
    bool isBeforeFirstRow() const { return m_isBeforeFirstRow; }
    /// Fail the run with the message for `problem`, and the reason if there is one; false.
    bool failWith(WriteProblem problem, const QString &name = {}, const QString &reason = {})
    {
        return fail(message(problem, name), reason);
    }
    /// Why the last call of `target` failed, in words and with the remedy.
    QString reasonOf(const TargetFile &target) const;
    /// Find the column that selects rows; call it from begin(). Problems: NoTestColumn.
    bool findTestColumn(const OneRow &columns);
    /// Find the columns to write: their indexes in the input, in the order of the output. Every
    /// missing name is reported. Problems: NoColumns (also for an empty list), NoColumn.
    bool findColumns(const OneRow &columns, QVector<int> *inputs);
    /// Report two of the columns `inputs` that have one name, when checkNameCollision is on; false
    /// then.
    bool checkNames(const OneRow &columns, const QVector<int> &inputs);
    /// A column whose name the format cannot have, and the name that it gets.
    struct ChangedName
    {
        QString column;
        QString name;
    };
    /// "2 column names are changed to fit the format: 'a b' to 'a_b', ...", for a warning.
    static QString textOf(const std::vector<ChangedName> &changed);
    /// Warn about the columns `names` of a parameter that the input does not have; one that is
    /// misspelt would lose its settings silently. `target` says what is written: "SAS file".
    void warnUnknown(const QString &target, const char *parameter, const QStringList &names,
                     const OneRow &columns);
    /// Create the missing folders of `file` when createDir is on. A failure shows when the file is
    /// opened, and createDir is then the remedy.
    void createFolder(const QString &file);
    /// The options for a file of this run. A failed write of it is retried as long as the run is
    /// good and the user, asked about `file`, wants to.
    TargetFile::Options targetOptions(const QString &file,
                                      TargetMode mode = TargetMode::Replace) const;
    /// How this run waits for the lock of `file`. A wait is logged.
    LockOptions lockOptions(const QString &file) const;
    /// Fail the run because another program did not release the lock of `file` in time; false.
    bool failLocked(const QString &file);

private:
    bool step() final;
    void finish() final;
    bool takeRow(const OneRow &row);
    bool isSelected(const OneRow &row) const;
    void endRows();

    static constexpr int kNoColumn = -1; // as OneRow::getIndexOfColumn()
    QString m_fileName;
    int m_testColumn = kNoColumn; // kNoColumn: every row is selected
    qint64 m_rowNumber = 0;
    bool m_isBeforeFirstRow = true;
    QString m_folderRemedy;    // for reasonOf()
    bool m_isComplete = false; // all rows are taken
};

} // namespace corvanta
