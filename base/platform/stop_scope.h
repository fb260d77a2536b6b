// Ends the waits for pipes when a run ends.
//
// A read or a write of a pipe, or the wait for its other end, can take forever. A thread of a run
// has a StopScope, so that FileHandle gives up such a wait soon after the run has ended.
#pragma once
#include <functional>

namespace corvanta::platform {

/// As long as it exists, the waits of FileHandle on the calling thread fail with EINTR once
/// `isStopped` returns true. It is asked about 20 times per second during a wait, on this thread.
/// Scopes are nested; destroy a scope on the thread that created it.
class StopScope
{
public:
    explicit StopScope(std::function<bool()> isStopped);
    ~StopScope();
    StopScope(const StopScope &) = delete;
    StopScope &operator=(const StopScope &) = delete;

    /// Whether the calling thread must not wait any longer. False without a scope.
    static bool isStopped();

private:
    std::function<bool()> m_isStopped;
    const StopScope *m_previous; // the scope of this thread before, or null
};

} // namespace corvanta::platform
