#include "io/replace/file_swap.h"

#include "base/platform/files.h"

#include <QFileInfo>

namespace corvanta {

namespace {

/// Rename with retries: virus scanners and indexers hold a new file open for a moment.
bool renamed(const QString &from, const QString &to, const SwapObserver &observer)
{
    for (int retry = 0; !platform::renameOver(from, to); ++retry) {
        if (retry == kSwapRetries) {
            return false;
        }
        observer.failedAttempt(from, to);
        if (!observer.pause(kSwapPauseMs)) {
            return false;
        }
    }
    return true;
}

} // namespace

std::optional<FailedRename> swapFile(const SwapNames &names, const SwapObserver &observer)
{
    const bool isThere = QFileInfo::exists(names.target);
    if (!isThere && !QFileInfo::exists(names.temporary)) {
        renamed(names.target, names.backup, observer);
        return FailedRename{names.target, names.backup};
    }
    const bool hasBackup = isThere && platform::hardLink(names.target, names.backup);
    // Before the rename: the target never has other permissions, not even for a moment.
    if (isThere) {
        platform::copyPermissions(names.target, names.temporary);
    }
    const bool isDone = renamed(names.temporary, names.target, observer);
    if (hasBackup) {
        platform::removeFile(names.backup);
    }
    // Without this, a power failure could bring the old name back.
    platform::syncFolder(QFileInfo(names.target).absolutePath());
    return isDone ? std::nullopt
                  : std::optional<FailedRename>(FailedRename{names.temporary, names.target});
}

} // namespace corvanta
