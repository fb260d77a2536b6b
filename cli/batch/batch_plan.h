// What a batch consists of, and its folder:
//
//   batch.json     the plan and the number of the job
//   graph          a copy of the graph file: an edit does not change tasks that have not begun
//   inputs.jsonl   the inputs, see batch_inputs.h
//   job.sh TASK    runs one task; merge.sh merges
//   logs           one log per task, JSON lines
//   status         the exit status of each task that has ended by itself, in a file with its number
//   journal        see journal.h
//   failures.tsv   the table of the inputs that have failed
#pragma once
#include "cli/batch/input_runs.h"
#include "cli/batch/shard.h"

#include <QJsonObject>

/// The settings of a batch, as its command line has them.
struct BatchPlan
{
    QString folder;       ///< absolute
    QString graphFile;    ///< absolute
    QString backend;      ///< slurm, parallel or local
    QString journal;      ///< folder, absolute
    QString merged;       ///< absolute; empty: nothing is merged
    qsizetype inputs = 0; ///< a piece of a file counts as one
    qsizetype tasks = 0;
    int retries = 1;
    int maxRunning = 0;         ///< 0: as many as the backend likes
    bool balancesSize = false;  ///< of tasks, see Shard::inputsOf()
    RunIdentity identity;       ///< of the runs
    QStringList runOptions;     ///< words that each run gets
    QStringList mergeOptions;   ///< words that the merge gets
    QStringList backendOptions; ///< words for sbatch or parallel
    QString job;                ///< of the scheduler; empty: none
    QString mergeJob;

    /// The plan of a command line for a graph with its inputs. The fault is a usage error.
    static CommandResult<BatchPlan> of(const CommandLine &line, const BatchGraph &graph);
    /// The plan in a folder. The fault is a usage error.
    static CommandResult<BatchPlan> read(const QString &folder);

    QString file(const QString &name) const { return folder + u'/' + name; }
    /// The log of a task.
    QString logOf(qsizetype task) const;
    /// The shard of a task.
    Shard shardOf(qsizetype task) const { return {task, tasks}; }
    /// The exit status of a task that has ended by itself; of "merge", of the merge.
    std::optional<int> statusOf(const QString &task) const;
    /// The command that runs the graph for one input only, in visible characters.
    QString commandFor(qsizetype input) const;

    /// Write all files that the tasks need, and remove the statuses of earlier ones. The fault is
    /// kFailed.
    CommandResult<void> writeFiles(const BatchGraph &graph) const;
    /// Write batch.json. The same.
    CommandResult<void> save() const;
};

/// A word of a shell command.
QString shellWord(const QString &word);
