// io/replace/file_swap.h
// Put a finished file in the place of another one, with a way back.
//
// There is no moment at which the target is missing: the backup is a second name of the old file (a
// hard link), and the finished file is renamed over the target in one step. Where the file system
// has no hard links that one step does without the backup: when it fails nothing has changed.
#pragma once
#include <QString>

#include <functional>
#include <optional>

namespace corvanta {

struct SwapNames
{
    QString temporary; ///< complete, synced and closed; in the target's folder
    QString target;
    QString backup; ///< name that the old file has meanwhile
};

struct SwapObserver
{
    /// A rename failed and is tried again.
    std::function<void(const QString &from, const QString &to)> failedAttempt;
    /// Wait before that; false when it shall not be tried again.
    std::function<bool(int pauseMs)> pause;
};

inline constexpr int kSwapRetries = 5;
inline constexpr int kSwapPauseMs = 1000;

/// A rename that failed for good.
struct FailedRename
{
    QString from;
    QString to;
};

/// Swap the files and wait until the device has the new names. After a failure the target is as it
/// was, the backup name is gone and the temporary file still there. A target that does not exist is
/// made; when there is no temporary file either, the first step, the backup, is the one that
/// failed.
std::optional<FailedRename> swapFile(const SwapNames &names, const SwapObserver &observer);

} // namespace corvanta
