// Waits by asking again: a lock that could be waited for would not notice the end of the run.
#include "base/target_lock.h"

#include <QElapsedTimer>
#include <QFileInfo>

#include <chrono>
#include <thread>

namespace corvanta {

using platform::FileLock;

FileLock::Outcome TargetLock::tryOnce(const QString &name, IfMissing ifMissing)
{
    FileLock::Outcome outcome = m_lock.tryFile(name, ifMissing);
    if (outcome != FileLock::Outcome::Missing) {
        return outcome;
    }
    outcome = m_lock.tryName(name);
    // The last owner of the name may have created the file after the first look.
    return outcome == FileLock::Outcome::Locked && QFileInfo::exists(name) ? m_lock.tryFile(name)
                                                                           : outcome;
}

TargetLock::Done TargetLock::lock(const QString &name, const LockOptions &options,
                                  IfMissing ifMissing)
{
    constexpr std::chrono::milliseconds kPause(50);
    QElapsedTimer clock;
    clock.start();
    for (bool isFirst = true; tryOnce(name, ifMissing) == FileLock::Outcome::Held;
         isFirst = false) {
        if (options.timeOut >= 0 && clock.elapsed() >= options.timeOut * qint64(1000)) {
            return Fault{LockError::TimedOut, name};
        }
        if (isFirst && options.beforeWaiting) {
            options.beforeWaiting();
        }
        std::this_thread::sleep_for(kPause);
        if (options.isRunning && !options.isRunning()) {
            return Fault{LockError::Stopped, name};
        }
    }
    return {};
}

} // namespace corvanta
