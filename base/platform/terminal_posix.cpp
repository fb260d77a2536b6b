#include "base/platform/terminal.h"

#include <sys/ioctl.h>
#include <unistd.h>

namespace corvanta::platform {

bool errorsGoToTerminal()
{
    return ::isatty(STDERR_FILENO) == 1;
}

int errorTerminalWidth()
{
    constexpr int kUsual = 80;
    winsize size = {};
    return ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : kUsual;
}

} // namespace corvanta::platform
