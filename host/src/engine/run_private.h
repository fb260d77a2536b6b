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

    void build(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions &options);
    void add(const QString &id, std::unique_ptr<ActionItem> action, int pinsIn,
             const PinOptions &options);
    void addListener(const CorvantaGraph &graph, Listener &listener, const PinOptions &options);
    void endUnlinkedPins(const CorvantaGraph &graph);
    void orderActions(const CorvantaGraph &graph, const std::vector<Listener> &listeners);
    FileUser filesOf(const CorvantaGraph &graph, size_t index) const;
    void connect(const CorvantaGraph &graph, const CorvantaGraph::Pin &from, size_t to, int pin);
    void initActions();
    void startThreads();
    void startThread(RunNode &node);
    void closeInitialised();
    void execute(RunNode &node) noexcept;
    template <class F> void attempt(F &&work) noexcept;
    void runAndClose(RunNode &node) noexcept;
    void callRun(RunNode &node);
    void endYield(const RunNode &node);
    void waitForReaders(const RunNode &node);
    void closeAction(RunNode &node);
    void syncNewFiles();
    void endRun(RunControl::Status status);
    void releaseAll();
    void wake(const RunNode &node) noexcept;
    Clock::duration stopLimit() const;
    bool isOverdue() const;
    void abandon();
    void giveOwnControl(const CorvantaGraph &graph, const CorvantaGraph::Pin &from);
    void endAlone(RunNode &node, RunControl::Status status);
    bool endedAlone(const RunNode &node) const;
    bool hasRowsToKeep(const RunNode &node) const;
    bool isEnded(const RunNode &node) const { return !control.isRunning() || endedAlone(node); }
    LogScope::Context logContext(const RunNode &node) const { return {log, node.id}; }
};

} // namespace corvanta
