// Facts about the terminals of the standard streams.
#pragma once
#include <cstdio>

namespace corvanta::platform {

/// Whether the stream writes to a terminal, and not to a file or a pipe.
bool isTerminal(std::FILE *stream);
/// Number of columns of the stream's terminal; 80 if unknown.
int terminalWidth(std::FILE *stream);

/// Give a closed standard input, output or error a descriptor that fails every read and write.
/// Otherwise the next file that is opened would take its place. Call before any file is opened.
void occupyStandardStreams();

/// Reserve standard error for the caller and discard everything that libraries print to it from now
/// on. Returns a stream that stays open until the program ends, or stderr if that fails.
std::FILE *takeErrorStream();

} // namespace corvanta::platform
