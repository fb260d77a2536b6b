// The POSIX implementation, with isatty(3) and the TIOCGWINSZ call.
#include "base/platform/terminal.h"

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace corvanta::platform {

bool isTerminal(std::FILE *stream)
{
    return ::isatty(::fileno(stream)) == 1;
}

int terminalWidth(std::FILE *stream)
{
    constexpr int kUsual = 80;
    winsize size = {};
    return ::ioctl(::fileno(stream), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                                : kUsual;
}

void occupyStandardStreams()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) == -1) {
            // The lowest free number is this one. The wrong direction, so that nothing gets lost
            // silently.
            static_cast<void>(
                ::open("/dev/null", descriptor == STDIN_FILENO ? O_WRONLY : O_RDONLY));
        }
    }
}

std::FILE *takeErrorStream()
{
    // Libraries write to the descriptor of standard error. Move it and put /dev/null in its place.
    const int copy = ::fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
    const int nothing = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    std::FILE *const stream = copy >= 0 && nothing >= 0 ? ::fdopen(copy, "w") : nullptr;
    if (stream != nullptr) {
        ::dup2(nothing, STDERR_FILENO);
    } else {
        ::close(copy);
    }
    ::close(nothing);
    return stream != nullptr ? stream : stderr;
}

} // namespace corvanta::platform
