// Messages name the folder of a temporary file, because the file has no name, and the folder is
// what a user can change (TMPDIR).
#include "actions/shared/tables/kept_rows.h"

#include "corvanta/failure_reason.h"

using namespace Qt::StringLiterals;

namespace corvanta::shared {

/// The folder is named, because users can choose another one with more room.
bool failKeptRows(ActionBase *action, const QString &folder, SystemError error)
{
    // A failure after the end of the run is a consequence of it.
    return action->runIsGood() &&
           action->fail(
               u"Error: %1: the rows cannot be kept in a temporary file in the folder '%2'\n"_s.arg(
                   QString::fromLatin1(action->getTypeName()), folder),
               failureReason(folder, FileUse::Write, error));
}

/// A full disk asks the user before it fails the run.
BlockSpool::Options spoolOptions(const ActionBase *action)
{
    const QString folder = BlockSpool(BlockSpool::Options{}).folder();
    return {.memoryBytes = 0,
            .retryWrite = [action, folder] { return action->askRetryWrite(folder); }};
}

rows::RowSorter::Options sorterOptions(const ActionBase *action)
{
    rows::RowSorter::Options options;
    options.retryWrite = spoolOptions(action).retryWrite;
    options.isRunning = [action] { return action->runIsGood(); };
    return options;
}

bool failSorter(ActionBase *action, const rows::RowSorter &sorter)
{
    return failKeptRows(action, sorter.folder(), sorter.error());
}

} // namespace corvanta::shared
