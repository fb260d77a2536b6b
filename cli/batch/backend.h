// What runs the tasks of a batch: worker processes, GNU parallel or Slurm.
#pragma once
#include "cli/batch/batch_plan.h"

#include <memory>

/// Threads: the owner's.
class Backend
{
public:
    Backend() = default;
    Backend(const Backend &) = delete;
    Backend &operator=(const Backend &) = delete;
    virtual ~Backend() = default;

    /// Start the tasks of the plan with these numbers, not empty. Stores the numbers of jobs in the
    /// plan. The fault is a usage error: what the scheduler says.
    virtual CommandResult<void> start(const QVector<qsizetype> &tasks, BatchPlan *plan) = 0;
    /// Whether tasks, or the merge, have not ended. Call it often: it starts what is next.
    virtual bool isRunning() = 0;
    /// End all tasks and wait until they have ended.
    virtual void cancel() = 0;
    /// Whether a person has cancelled tasks in the scheduler, after their end.
    virtual bool isCancelled() { return false; }
    /// Whether the scheduler merges when all tasks are done.
    virtual bool mergesItself() const { return false; }
};

/// The backend of a plan. The fault is a usage error: its programs are missing.
CommandResult<std::unique_ptr<Backend>> makeBackend(const BatchPlan &plan);

/// One per kind.
std::unique_ptr<Backend> makeLocalBackend(const BatchPlan &plan);
std::unique_ptr<Backend> makeParallelBackend(const BatchPlan &plan);
std::unique_ptr<Backend> makeSlurmBackend(const BatchPlan &plan);

/// What a program has printed, and how it ended.
struct ProgramOutput
{
    bool isDone = false; ///< with status 0
    QString output;
    QString errors; ///< or why it could not be started
};
ProgramOutput runProgram(const QString &program, const QStringList &words);
/// Run a shell script to its end, or until a signal ends this program.
void runScript(const QString &name);
