// A lock on a file that is updated or extended, so that runs in several processes take turns.
//
// The lock is advisory: it excludes other locks of this kind and other programs that use flock().
// It needs no file of its own, and the system releases it when the process ends.
#pragma once
#include "base/platform/file_lock.h"
#include "base/result.h"

#include <QString>

#include <functional>

namespace corvanta {

/// How a writer waits for a file that another one has locked.
struct LockOptions
{
    /// The usual limit, in seconds.
    static constexpr int kTimeOut = 60;

    int timeOut = kTimeOut;                   ///< in seconds; negative: no limit
    std::function<bool()> isRunning = {};     ///< false ends the wait; without it nothing does
    std::function<void()> beforeWaiting = {}; ///< called once, if the file is locked
};

enum class LockError {
    TimedOut, ///< another owner has kept the lock for too long
    Stopped,  ///< isRunning() was false
};

/// Held from lock() to release(). Threads: one at a time.
class TargetLock
{
public:
    using IfMissing = platform::FileLock::IfMissing;
    using Done = Result<void, LockError>;

    /// Lock the file `name`, to which no link leads; with IfMissing::Report a name without a file
    /// is locked instead. Waits while it is locked. Succeeds without a lock where there are none,
    /// for example on a file system without them: writing then shows what is wrong.
    Done lock(const QString &name, const LockOptions &options,
              IfMissing ifMissing = IfMissing::Report);
    void release() { m_lock.release(); }
    /// Whether lock() created the file.
    bool hasCreated() const { return m_lock.hasCreated(); }

private:
    platform::FileLock::Outcome tryOnce(const QString &name, IfMissing ifMissing);

    platform::FileLock m_lock;
};

} // namespace corvanta
