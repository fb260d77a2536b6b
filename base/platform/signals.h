// The signals that end a program.
#pragma once

namespace corvanta::platform {

/// Call `handler` for every signal by which a user, a terminal or a batch system ends a program:
/// interrupt, quit, hang-up, termination. A signal that is ignored when the program starts (by
/// nohup, for example) stays ignored. `handler` runs on any thread, between any two instructions of
/// it, so it may do only what is safe in a signal handler.
void catchStopSignals(void (*handler)(int signal));

/// Report a write to a pipe without readers, or beyond the limit of file sizes, as a failed write.
/// By default such a write ends the program, which then leaves its temporary files.
void ignoreWriteSignals();

} // namespace corvanta::platform
