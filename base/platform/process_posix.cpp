// The POSIX implementation: a child process leads a process group, which is killed as a whole.
#include "base/platform/process.h"

#include <QProcess>

#ifdef __linux__
#include <sys/prctl.h>
#endif
#include <unistd.h>

#include <csignal>

namespace corvanta::platform {

void makeGroup(QProcess &process)
{
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
}

void makeGroupThatEndsWithUs(QProcess &process)
{
    process.setChildProcessModifier([parent = ::getpid()] {
        ::setpgid(0, 0);
#ifdef __linux__
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        // It may have ended before.
        if (::getppid() != parent) {
            ::_exit(1);
        }
#endif
    });
}

void terminateWithChildren(QProcess &process)
{
    if (const auto group = static_cast<pid_t>(process.processId()); group > 0) {
        ::kill(-group, SIGTERM);
    }
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
