// What a run consists of: its actions with their pins and threads, its status, and its log.
//
// run_setup.cpp makes the actions and connects their pins, run.cpp runs them.
#pragma once
#include "corvanta/action_parameters.h"
#include "corvanta/log.h"
#include "corvanta/run.h"
#include "engine/pins.h"
#include "engine/run_sequence.h"
#include "engine/target_order.h"
#include "run_files.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace corvanta {

/// Passes messages on to the log of a run, until the run is given up: an action that does not stop
/// may outlive the sink. Threads: any.
class RunLog final : public LogSink
{
public:
    /// Set the sink, or null: messages are then dropped.
    void setTarget(LogSink *target)
    {
        const std::lock_guard lock(m_mutex);
        m_target = target;
    }
    void add(const LogMessage &message) override
    {
        pass([&](LogSink &sink) { sink.add(message); });
    }
    void addBytesRead(qint64 n) override
    {
        pass([n](LogSink &sink) { sink.addBytesRead(n); });
    }
    void addWrittenFile(const QString &name) override
    {
        pass([&](LogSink &sink) { sink.addWrittenFile(name); });
    }

private:
    template <class F> void pass(F &&call)
    {
        const std::lock_guard lock(m_mutex);
        if (m_target != nullptr) {
            call(*m_target);
        }
    }

    std::mutex m_mutex;
    LogSink *m_target = nullptr; // guarded by m_mutex
};

/// One action of the run, its pins and its thread.
struct RunNode
{
    QString id;
    QString type;
    std::unique_ptr<ActionItem> action;
    std::unique_ptr<Ports> ports;
    RunControl ownControl;         // of an action that ends alone, see RunOptions::keepPartial
    RunControl *control = nullptr; // what the action sees: its own, or that of the run
    std::atomic<bool> initialised = false; // atomic: releaseAll() reads it on any thread
    std::atomic<bool> closing = false;     // close() has been called
    // Atomic: progress() reads it on any thread.
    std::atomic<ActionProgress::State> state = ActionProgress::State::Waiting;
    std::jthread thread; // the last member: joined before the others are destroyed

    bool isFinished() const { return state.load() >= ActionProgress::State::Done; }
};

/// All of a run. Three kinds of threads use it: the owner, which sets up, starts, stops and joins;
/// one thread per action, in execute(); and any thread that stops the run or shows its progress.
struct Run::Private
{
    using Clock = std::chrono::steady_clock;

    GlobalParameters global;
    RunControl control;
    RunLog ownLog;                               // of the sink in RunOptions
    LogSink *log = nullptr;                      // ownLog; null: the program's sink
    std::vector<std::unique_ptr<RunNode>> nodes; // in the order of the graph, then the listeners
    RunSequence sequence;                        // of the actions that use one file
    CorvantaGraph::Problems problems;
    RunFiles files; // that the actions write

    std::mutex mutex;
    std::condition_variable ended;
    size_t running = 0;                      // threads that have not ended; guarded by mutex
    std::atomic<Clock::rep> releaseTime = 0; // when releaseAll() was called; 0: not yet
    Clock::duration stopTimeout = {};        // see RunOptions
    std::atomic<bool> isAbandoned = false;   // threads are left that use this object

    // ---- Before the run, on the owner's thread.

    /// Make the actions with their pins and connect them; starts nothing. Moves the listeners out
    /// of `options`.
    void build(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions &options);
    /// Append an action with input pins 0 to `pinsIn` - 1.
    void add(const QString &id, std::unique_ptr<ActionItem> action, int pinsIn,
             const PinOptions &options);
    /// Append a listener as an action that reads an output pin.
    void addListener(const CorvantaGraph &graph, Listener &listener, const PinOptions &options);
    /// End the data of each input pin without a link: it is a table without rows.
    void endUnlinkedPins(const CorvantaGraph &graph);
    /// Find the order of actions that use one file. Sets `sequence`, `files` and `problems`.
    void orderActions(const CorvantaGraph &graph, const std::vector<Listener> &listeners);
    /// The files that node `index` declares.
    FileUser filesOf(const CorvantaGraph &graph, size_t index) const;
    /// Let input pin `pin` of node `to` read the output pin `from`.
    void connect(const CorvantaGraph &graph, const CorvantaGraph::Pin &from, size_t to, int pin);
    /// Let an action end without the run: RunOptions::keepPartial.
    void giveOwnControl(const CorvantaGraph &graph, const CorvantaGraph::Pin &from);
    /// Call init() of the actions, in the order of the graph, until one fails.
    void initActions();
    /// Start one thread per action. One that cannot be started fails the run.
    void startThreads();
    void startThread(RunNode &node);
    /// Close the actions that were initialised, when an init() has failed.
    void closeInitialised();

    // ---- On the thread of an action.

    /// The function of the thread.
    void execute(RunNode &node) noexcept;
    /// Call `work`; what it throws fails the run.
    template <class F> void attempt(F &&work) noexcept;
    /// Run an action to its end, close it, then end the data of its output pins.
    void runAndClose(RunNode &node) noexcept;
    /// Call the run function until the action is finished, nothing reads it, or the run has ended.
    void callRun(RunNode &node);
    /// The action has yielded: it may run again, unless the run has ended.
    void endYield(const RunNode &node);
    /// Wait until the actions that read a target of this one have read it, or the run has ended.
    void waitForReaders(const RunNode &node);
    void closeAction(RunNode &node);
    /// Flush new files to disk, so that the output of a successful run survives a power cut.
    void syncNewFiles();
    /// End an action as if its data ended here; the run continues.
    void endAlone(RunNode &node, RunControl::Status status);
    /// Whether that has happened.
    bool endedAlone(const RunNode &node) const;
    /// Whether a writer may get rows although this action has ended.
    bool hasRowsToKeep(const RunNode &node) const;

    // ---- The end of the run, on any thread.

    /// Set the status if the run has none yet, and release every thread.
    void endRun(RunControl::Status status);
    /// Release every thread that waits. Only the first call has an effect.
    void releaseAll();
    void wake(const RunNode &node) noexcept;
    /// How long the actions may take to stop after releaseAll().
    Clock::duration stopLimit() const;
    bool isOverdue() const;
    /// Give up the threads of actions that do not stop. The object is then never destroyed.
    void abandon();
    bool isEnded(const RunNode &node) const { return !control.isRunning() || endedAlone(node); }
    LogScope::Context logContext(const RunNode &node) const { return {log, node.id}; }
};

} // namespace corvanta
