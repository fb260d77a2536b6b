// base/platform/terminal.h
// The terminal behind standard error.
#pragma once
#include <cstdio>

namespace corvanta::platform {

bool errorsGoToTerminal();
/// Columns of that terminal; 80 when they are not known.
int errorTerminalWidth();

/// Keep standard error for the caller: what libraries print there from now on is dropped. The stream lives as long
/// as the program; stderr itself when that cannot be done.
std::FILE *takeErrorStream();

} // namespace corvanta::platform
