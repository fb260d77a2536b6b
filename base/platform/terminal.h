// base/platform/terminal.h
// Terminals behind the standard streams.
#pragma once
#include <cstdio>

namespace corvanta::platform {

bool isTerminal(std::FILE *stream);
/// Columns of the stream's terminal; 80 when they are not known.
int terminalWidth(std::FILE *stream);

/// Keep standard error for the caller: what libraries print there from now on is dropped. The
/// stream lives as long as the program; stderr itself when that cannot be done.
std::FILE *takeErrorStream();

} // namespace corvanta::platform
