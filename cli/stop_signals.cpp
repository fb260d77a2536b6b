// A signal handler may do almost nothing: it only stores the signal. A thread looks at it and stops
// the run.
#include "stop_signals.h"

#include "base/platform/signals.h"
#include "failure.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <csignal>
#include <mutex>

using namespace std::chrono_literals;

namespace {

using Clock = std::chrono::steady_clock;

std::atomic<int> caughtSignal = 0;      // the first one; 0: none yet
std::atomic<Clock::rep> signalTime = 0; // of the first one; 0: none yet
std::atomic<int> cleanEnds = 0;         // number of CleanEnd objects

/// The program ends without destructors: they are not safe in a signal handler.
[[noreturn]] void endNow(int signal)
{
    std::_Exit(kEndedBySignal + signal);
}

/// Only calls that are allowed in handlers of signals (signal-safety(7)).
void onSignal(int signal)
{
    // Shells and tools such as timeout often send a signal twice, to the process and to its group.
    constexpr auto kSameRequest = std::chrono::duration_cast<Clock::duration>(500ms).count();
    const Clock::rep now = Clock::now().time_since_epoch().count();
    int first = 0;
    if (caughtSignal.compare_exchange_strong(first, signal)) {
        signalTime = now;
        if (cleanEnds == 0) {
            endNow(signal);
        }
    } else if (const Clock::rep time = signalTime;
               signal == SIGINT && time != 0 && now - time > kSameRequest) {
        endNow(first);
    }
}

/// Waits for a signal or for the request to end, and stops the run after a signal.
void watch(const std::stop_token &end, corvanta::Run &run)
{
    // Short enough for a prompt reaction, long enough to cost nothing.
    constexpr auto kTick = 50ms;
    const auto isSignalled = [] { return caughtSignal != 0; };
    std::mutex mutex; // nothing is shared: only `end` wakes this thread before the tick
    std::condition_variable_any wake;
    std::unique_lock lock(mutex);
    while (!end.stop_requested() && !wake.wait_for(lock, end, kTick, isSignalled)) {
    }
    if (!isSignalled() || run.stopReading()) {
        return;
    }
    run.stop();
    // The run itself gives up actions that do not stop, except while it is being started.
    constexpr auto kStart = 15s;
    wake.wait_for(lock, end, kStart, [] { return false; });
    if (!end.stop_requested()) {
        reportFailure("the run does not stop");
        endNow(caughtSignal);
    }
}

} // namespace

void catchStopSignals()
{
    corvanta::platform::catchStopSignals(onSignal);
    corvanta::platform::ignoreWriteSignals();
}

std::optional<ExitStatus> interruption()
{
    const int signal = caughtSignal;
    return signal == 0 ? std::nullopt
                       : std::optional(static_cast<ExitStatus>(kEndedBySignal + signal));
}

CleanEnd::CleanEnd()
{
    ++cleanEnds;
}

CleanEnd::~CleanEnd()
{
    --cleanEnds;
}

SignalWatch::SignalWatch(corvanta::Run &run)
    : m_thread([&run](const std::stop_token &end) { watch(end, run); })
{
}
