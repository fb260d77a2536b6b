// The POSIX implementation, with sigaction(2).
#include "base/platform/signals.h"

#include <csignal>

namespace corvanta::platform {

void catchStopSignals(void (*handler)(int signal))
{
    for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM}) {
        struct sigaction action = {};
        if (::sigaction(signal, nullptr, &action) == 0 && action.sa_handler != SIG_IGN) {
            action = {};
            action.sa_handler = handler;
            // Most system calls continue; waits that may be long look for a stop themselves.
            action.sa_flags = SA_RESTART;
            ::sigaction(signal, &action, nullptr);
        }
    }
}

void ignoreWriteSignals()
{
    // NOLINTNEXTLINE(cert-err33-c): the two signals exist, so the calls do not fail
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
}

} // namespace corvanta::platform
