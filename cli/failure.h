// The failure of the program itself: no memory, or an exception that nothing else has caught.
//
// Nothing here allocates memory.
#pragma once
#include <cstdio>

/// Write failures to `stream` from now on, as JSON objects or as text. It is not closed. The
/// default is text on standard error.
void setFailureStream(std::FILE *stream, bool isJson);

/// Write one message of level 1: why the program failed, in plain ASCII.
void reportFailure(const char *why) noexcept;

/// Report the exception that is being handled.
void reportException() noexcept;

/// Report an exception that cannot be caught, for example in a destructor of a library, and end the
/// program with kFailed. Without this the program would be aborted.
void reportUncaughtExceptions();
