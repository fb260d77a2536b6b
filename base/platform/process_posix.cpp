// The POSIX implementation: a child process leads a process group, which is killed as a whole.
#include "base/platform/process.h"

#include <QProcess>

#ifdef __linux__
#include <sched.h>
#include <sys/prctl.h>
#endif
#include <unistd.h>

#include <csignal>
#include <optional>

namespace corvanta::platform {

#ifdef __linux__
namespace {

/// The processors of a share: those with neighbouring numbers, which often share a cache. Nothing
/// if the process may use all that this program may use.
std::optional<cpu_set_t> processorsOf(ProcessorShare share)
{
    cpu_set_t allowed;
    if (share.parts <= 1 || ::sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
        return {}; // it fails for machines with more processors than the set can name
    }
    const auto count = static_cast<size_t>(CPU_COUNT(&allowed));
    cpu_set_t processors;
    CPU_ZERO(&processors);
    size_t seen = 0;
    for (size_t processor = 0; processor < CPU_SETSIZE; ++processor) {
        if (CPU_ISSET(processor, &allowed) && seen++ * share.parts / count == share.part) {
            CPU_SET(processor, &processors);
        }
    }
    return share.parts <= count ? std::optional(processors) : std::nullopt;
}

} // namespace
#endif

void makeGroup(QProcess &process)
{
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
}

#ifdef __linux__
void makeGroupThatEndsWithUs(QProcess &process, ProcessorShare share)
{
    process.setChildProcessModifier([parent = ::getpid(), processors = processorsOf(share)] {
        ::setpgid(0, 0);
        if (processors) {
            ::sched_setaffinity(0, sizeof *processors, &*processors); // failing, it is only slower
        }
        ::prctl(PR_SET_PDEATHSIG, SIGTERM);
        // It may have ended before.
        if (::getppid() != parent) {
            ::_exit(1);
        }
    });
}
#else
void makeGroupThatEndsWithUs(QProcess &process, ProcessorShare)
{
    makeGroup(process);
}
#endif

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
