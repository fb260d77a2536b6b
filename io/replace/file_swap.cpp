#include "io/replace/file_swap.h"

#include "base/platform/files.h"

#include <QFileInfo>

namespace corvanta {

namespace {

/// Rename with retries: virus scanners and indexers hold a new file open for a moment.
Result<void, FailedRename> rename(const QString &from, const QString &to,
                                  const SwapObserver &observer)
{
    for (int retry = 0; !platform::renameOver(from, to); ++retry) {
        const Fault failed{FailedRename{from, to, SystemError::ofLastCall()}};
        if (retry == kSwapRetries) {
            return failed;
        }
        observer.failedAttempt(from, to);
        if (!observer.pause(kSwapPauseMs)) {
            return failed;
        }
    }
    return {};
}

} // namespace

Result<void, FailedRename> swapFile(const SwapNames &names, const SwapObserver &observer)
{
    const bool isThere = QFileInfo::exists(names.target);
    // Nothing to swap: the rename that fails gives the system's reason.
    if (!isThere && !QFileInfo::exists(names.temporary)) {
        return rename(names.target, names.backup, observer);
    }
    const bool hasBackup = isThere && platform::hardLink(names.target, names.backup);
    // Before the rename: the target never has other permissions, not even for a moment.
    if (isThere) {
        platform::copyPermissions(names.target, names.temporary);
    }
    auto renamed = rename(names.temporary, names.target, observer);
    if (hasBackup) {
        platform::removeFile(names.backup);
    }
    // Without this, a power failure could bring the old name back.
    platform::syncFolder(QFileInfo(names.target).absolutePath());
    return renamed;
}

} // namespace corvanta
