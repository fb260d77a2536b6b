// The POSIX implementation: a child process leads a process group, which is killed as a whole.
#include "base/platform/process.h"

#include <QProcess>

#include <unistd.h>

#include <csignal>

namespace corvanta::platform {

void makeGroup(QProcess &process)
{
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
}

void addToJob(QProcess &, void *) {}

void killWithChildren(QProcess &process)
{
    // A process that has not started, or has ended, has the id 0, and kill(0) would end this
    // program.
    if (const auto group = static_cast<pid_t>(process.processId()); group > 0) {
        ::kill(-group, SIGKILL);
    }
    process.waitForFinished();
}

} // namespace corvanta::platform
