// Waits by asking again: a lock that could be waited for would not notice the end of the run.
#include "base/target_lock.h"

#include <QElapsedTimer>

#include <chrono>
#include <thread>
#include <utility>

namespace corvanta {

using platform::FileLock;

FileLock::Outcome TargetLock::tryOnce(const QString &name, IfMissing ifMissing)
{
    const FileLock::Outcome outcome = m_lock.tryFile(name, ifMissing);
    if (outcome != FileLock::Outcome::Missing) {
        return outcome;
    }
    const FileLock::Outcome named = m_lock.tryName(name);
    if (named != FileLock::Outcome::Locked) {
        return named;
    }
    // The last owner of the name may have created the file after the first look.
    FileLock file;
    const FileLock::Outcome again = file.tryFile(name);
    if (again == FileLock::Outcome::Missing) {
        return named;
    }
    m_lock = std::move(file);
    return again;
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
