// The part of the inputs that one task of a batch runs.
#pragma once
#include "cli/batch/input_list.h"

/// Shard `number` of `count`, counted from 1.
struct Shard
{
    qsizetype number = 1;
    qsizetype count = 1;

    /// The shard of `--shard I/N`. Without the option it follows from the task of a Slurm job
    /// array whose numbers begin at 0 or 1, else it is 1/1. The fault is a usage error.
    static CommandResult<Shard> of(const CommandLine &line);

    /// Whether this is all.
    bool isWhole() const { return count == 1; }
    /// "2/10"
    QString text() const;
    /// Its inputs, in the order of the list.
    QVector<InputFile> inputsOf(const QVector<InputFile> &all, bool balancesSize) const;
};

/// The number of the shard of each input: every count-th input is in one shard, or with
/// `balancesSize` all shards have about the same number of bytes. The same list gives the same
/// shards.
QVector<qsizetype> shardsOf(const QVector<InputFile> &all, qsizetype count, bool balancesSize);
