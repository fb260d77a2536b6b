// base/platform/terminal.h
// The terminal behind standard error.
#pragma once

namespace corvanta::platform {

bool errorsGoToTerminal();
/// Columns of that terminal; 80 when they are not known.
int errorTerminalWidth();

} // namespace corvanta::platform
