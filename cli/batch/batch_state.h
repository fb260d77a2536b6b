// How far a batch is, from its journal, and which inputs have failed.
#pragma once
#include "cli/batch/batch_plan.h"
#include "cli/batch/journal.h"

/// How many inputs are in which state.
struct BatchCounts
{
    qsizetype inputs = 0;
    qsizetype done = 0;
    qsizetype failed = 0; ///< their last run failed; they may run again
    qint64 rows = 0;      ///< of those that are done

    qsizetype left() const { return inputs - done - failed; }
};

/// What is to be run.
struct BatchWork
{
    QVector<qsizetype> tasks; ///< their numbers, in order
    qsizetype inputs = 0;     ///< of these tasks, without those that the tasks skip
};

/// An input that is not done, with what a person needs to find out why.
struct BatchFailure
{
    QString input;   ///< with the rows of a piece
    QString cause;   ///< the first error, or why there is none
    QString log;     ///< FILE:LINE of that error; the file if it is not found
    QString command; ///< runs this input only
};

/// Reads the journal of a batch while its tasks write it. Threads: one at a time.
class BatchState
{
public:
    /// `plan` must outlive this object. `inputs` are those of the whole list.
    BatchState(const BatchPlan &plan, QVector<InputFile> inputs);
    /// Read what is new.
    void update();
    BatchCounts counts() const;
    /// The inputs that are not done, or whose outputs are missing.
    BatchWork workLeft() const;
    /// The files that the runs of the inputs that are done have written, in the order of the list.
    QStringList outputs() const;
    /// The inputs that are not done, in the order of the list.
    QVector<BatchFailure> failures() const;

private:
    void examineFile(qsizetype first);

    const BatchPlan &m_plan;
    QVector<InputFile> m_inputs;                      // the pieces of a file follow one another
    std::unordered_map<QString, qsizetype> m_indexes; // in m_inputs, of the first one of a name
    JournalReader m_reader;
    LastEntries m_last;
};

/// The table of failures with a line of names, separated by tabs. Invisible characters are escaped.
QByteArray failureTable(const QVector<BatchFailure> &failures);
