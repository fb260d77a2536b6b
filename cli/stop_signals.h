// The signals that end a command: Ctrl-C, Ctrl-\, hang-up and termination.
//
// The first one ends a run cleanly and the program immediately when there is no run, for example
// while the beginning of an input is read. A second Ctrl-C ends the program immediately.
#pragma once
#include "command_line.h"
#include "corvanta/run.h"

#include <optional>
#include <thread>

/// Catch the signals from now on. Signals that are ignored when the program starts stay ignored.
/// Writes to a closed pipe fail from now on, they do not end the program.
void catchStopSignals();

/// The exit status for the first signal that was caught; nothing without one. Threads: any.
std::optional<ExitStatus> interruption();

/// As long as it exists, the first signal does not end the program: there may be temporary files.
/// Create it before the run and destroy it after the run. Several may exist at a time.
class CleanEnd
{
public:
    CleanEnd();
    ~CleanEnd();
    CleanEnd(const CleanEnd &) = delete;
    CleanEnd &operator=(const CleanEnd &) = delete;
};

/// Stops a run at the first signal, or the reading of one that keeps partial files, also while the
/// run is being started. It has a thread of its own. Throws std::system_error if that cannot be
/// started.
class SignalWatch
{
public:
    /// `run` must outlive this object.
    explicit SignalWatch(corvanta::Run &run);

private:
    std::jthread m_thread;
};
