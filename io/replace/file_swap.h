// Replaces a file with a finished one, with a backup until the replacement has succeeded.
//
// The target exists at every moment: the backup is a second name of the old file (a hard link), and
// the finished file is renamed to the target in one step. A file system without hard links has no
// backup; a rename that fails has changed nothing there.
#pragma once
#include "base/result.h"
#include "base/system_error.h"

#include <QString>

#include <functional>

namespace corvanta {

struct SwapNames
{
    QString temporary; ///< complete, flushed to the device and closed; in the target's folder
    QString target;
    QString backup; ///< second name of the old file during the swap; in the same folder
};

/// Callbacks of swapFile(), on its thread.
struct SwapObserver
{
    /// Called after a rename that failed and will be retried.
    std::function<void(const QString &from, const QString &to)> failedAttempt;
    /// Waits `pauseMs` milliseconds before the retry; returns false to give up.
    std::function<bool(int pauseMs)> pause;
};

/// Retries after a failed rename, and the pause before each.
inline constexpr int kSwapRetries = 5;
inline constexpr int kSwapPauseMs = 1000;

/// A rename that failed after all retries.
struct FailedRename
{
    QString from;
    QString to;
    SystemError error;
};

/// Replace the target and wait until the device has the new names. After a failure the target is
/// unchanged, the backup name is removed and the temporary file remains. A target that does not
/// exist is created; when the temporary file does not exist either, the backup is the rename that
/// failed.
Result<void, FailedRename> swapFile(const SwapNames &names, const SwapObserver &observer);

} // namespace corvanta
