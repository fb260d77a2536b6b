// Runs a graph: connects the pins of its actions, starts one thread per action, and ends the run.
//
// Each thread calls its action's run function until that is finished or the run has ended, then
// closes the action and sends the end of its data. The first failure or stop changes the run
// status, closes all gates and wakes all actions, so that no thread stays blocked.
//
// Who waits for whom: a consumer waits in InputGate::pop() for its producers, a producer in
// InputGate::push() for room in a consumer's queue, an action in RunSequence for others that use
// its files, and the owner in wait() for all threads, after a stop or failure only for a while. No
// thread holds a lock while it waits for another one or calls an action. Links form no loop
// (CorvantaGraph::validate), orderByTargets() adds none, and an action that waits for others never
// blocks its producers: no waits form one.
#include "corvanta/run.h"

#include "base/mapped.h"
#include "base/platform/stop_scope.h"
#include "corvanta/failure_reason.h"
#include "corvanta/main_ui.h"
#include "engine/action_progress.h"
#include "engine/run_private.h"

#include <algorithm>
#include <stdexcept>
#include <system_error>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// Logs the exception that is being handled. Without the memory for the message there is none; the
/// program then says why the run failed.
void logException() noexcept
{
    const auto log = [](const QString &text) {
        MainUI::addLog(MainUI::Error, u"Error: %1\n"_s.arg(text));
    };
    try {
        try {
            throw;
        } catch (const std::bad_alloc &) {
            log(u"not enough memory"_s);
        } catch (const std::exception &error) {
            log(QString::fromUtf8(error.what()));
        } catch (...) {
            log(u"unknown failure"_s);
        }
    } catch (const std::exception &) {
    }
}

} // namespace

/// Calls a part of the work of an action. What throws is the engine itself (a full spill file, no
/// memory) or an action that does not catch what it throws; both fail the run.
template <class F> void Run::Private::attempt(F &&work) noexcept
{
    try {
        work();
    } catch (...) {
        endRun(RunControl::Failed);
        logException();
    }
}

/// Ends one action as if its data ended here.
void Run::Private::endAlone(RunNode &node, RunControl::Status status)
{
    // Before start() the status is Idle; start() then leaves it as it is set here.
    for (int expected : {RunControl::Idle, RunControl::Running}) {
        node.ownControl.runStatus.compare_exchange_strong(expected, status);
    }
    node.ownControl.yieldRequest = 1;
    wake(node);
}

/// Whether the action has failed or was ended, and the run continues with the rows that it sent.
bool Run::Private::endedAlone(const RunNode &node) const
{
    return node.control != &control && !node.control->isRunning();
}

/// Whether a writer may get rows although this action has ended: its own, or those of another
/// reader.
bool Run::Private::hasRowsToKeep(const RunNode &node) const
{
    bool hasRows =
        std::ranges::count(nodes, 0, [](const auto &other) { return other->ports->pinsIn(); }) > 1;
    for (int pin = 0; pin < node.ports->pinsOut(); ++pin) {
        hasRows = hasRows || node.ports->out(pin).rowCount() > 0;
    }
    return hasRows;
}

/// Releases every thread that waits. Any thread; only the first call has an effect.
void Run::Private::releaseAll()
{
    Clock::rep never = 0;
    if (!releaseTime.compare_exchange_strong(never, Clock::now().time_since_epoch().count())) {
        return;
    }
    control.yieldRequest = 1; // never reset from now on, see callRun()
    // The gates first: a thread that wakeAll() wakes must not wait again for a pin.
    for (const auto &node : nodes) {
        node->ports->gate().close();
    }
    sequence.wakeAll();
    for (const auto &node : nodes) {
        int expected = RunControl::Running;
        node->ownControl.runStatus.compare_exchange_strong(expected, control.runStatus);
        node->control->yieldRequest = 1;
        wake(*node);
    }
}

/// An action that was not initialised has no threads, and perhaps no state to wake.
void Run::Private::wake(const RunNode &node) noexcept
{
    if (node.initialised) {
        const LogScope scope(logContext(node));
        attempt([&] { node.action->wakeAll(); });
    }
}

void Run::Private::endRun(RunControl::Status status)
{
    // The first reason counts: a stop does not hide a failure.
    int expected = RunControl::Running;
    control.runStatus.compare_exchange_strong(expected, status);
    releaseAll();
}

/// Calls the run function until the action is finished, nothing reads it, or the run has ended.
void Run::Private::callRun(RunNode &node)
{
    if (node.action->m_runFunction == nullptr) {
        throw std::logic_error("the action has no run function");
    }
    while (node.control->isRunning() && !node.ports->isComplete()) {
        if ((node.action.get()->*node.action->m_runFunction)()) {
            return;
        }
        endYield(node);
    }
}

/// Ends a request to yield: this action has yielded; the others yield at a later request. After the
/// end of the run the request stays set, because every thread must see it.
void Run::Private::endYield(const RunNode &node)
{
    node.control->yieldRequest = 0;
    // The run may end at the same time. Its status changes before releaseAll() sets the request, so
    // either these loads see the new status, or the request is set after the line above (not
    // with isRunning(), whose load may be moved before it).
    if (node.control->runStatus != RunControl::Running ||
        control.runStatus != RunControl::Running) {
        node.control->yieldRequest = 1;
    }
}

void Run::Private::closeAction(RunNode &node)
{
    // A writer completes its file in close, so that can fail after all rows were written.
    if (node.action->close() != 0 && !endedAlone(node)) {
        endRun(RunControl::Failed);
    }
}

/// Flushes new files to disk, so that the output of a successful run survives a power cut.
void Run::Private::syncNewFiles()
{
    const QVector<UnsyncedNames::Failed> failed =
        control.isRunning() ? files.unsynced().sync() : QVector<UnsyncedNames::Failed>();
    for (const auto &[name, error] : failed) {
        MainUI::addLog(MainUI::Error, u"Error: cannot write file '%1'\n"_s.arg(name));
        logReason(failureReason(name, FileUse::Write, error));
        endRun(RunControl::Failed);
    }
}

/// Waits until the actions that read a target of this one have read all of it, or the run has
/// ended.
void Run::Private::waitForReaders(const RunNode &node)
{
    const int index = node.action->m_idx;
    sequence.setRead(index);
    if (sequence.closesLater(index)) {
        // Its producers may be what a reader waits for; this action takes no more rows.
        node.ports->gate().close();
        sequence.waitToClose(index, control);
    }
}

/// Runs one action to its end, closes it and ends the data of its output pins.
void Run::Private::runAndClose(RunNode &node) noexcept
{
    attempt([&] {
        callRun(node);
        // Send the last rows before close(), which may take long: the next actions work in
        // parallel.
        if (control.isRunning()) {
            node.ports->flush();
        }
    });
    if (endedAlone(node) && !hasRowsToKeep(node)) {
        endRun(RunControl::Status(node.control->runStatus.load()));
    }
    // After a failure release the other threads now, because the action may wait in close() for one
    // of its own, which wakeAll() wakes.
    if (!control.isRunning()) {
        releaseAll();
    } else if (endedAlone(node)) {
        endAlone(node, RunControl::Failed);
    }
    attempt([&] { waitForReaders(node); });
    node.closing = true;
    attempt([&] { closeAction(node); }); // also after a failed wait: it removes what is unfinished
    sequence.setClosed(node.action->m_idx);
    // Send the end of the data last: an action's files are complete when the next action sees the
    // end.
    attempt([&] { node.ports->end(); });
    // Producers must not wait for an action that reads no more, for example after the rows that it
    // needs.
    node.ports->gate().close();
    attempt([&] { syncNewFiles(); });
    // close() of this action, or the flush, may have failed the run.
    if (!control.isRunning()) {
        releaseAll();
    }
}

/// Initialises the actions on the caller's thread, in the order of the graph, until one fails.
void Run::Private::initActions()
{
    for (const auto &node : nodes) {
        const LogScope scope(logContext(*node));
        const platform::StopScope stop([&node] { return !node->control->isRunning(); });
        if (!control.isRunning()) {
            return;
        }
        // Set before init(), so that an action that fails halfway is closed and woken too.
        node->initialised = true;
        attempt([&] {
            if (node->action->init() != 0) {
                const bool isStop = node->control->runStatus == RunControl::Stopped;
                endRun(isStop ? RunControl::Stopped : RunControl::Failed);
            }
            node->action->prepareRun();
        });
    }
}

/// Starts one thread per action. The threads use this object; Run::~Run() joins them. An action
/// whose thread cannot be started is closed here, and the run fails.
void Run::Private::startThreads()
{
    running = nodes.size(); // without the mutex: no thread exists yet
    for (const auto &node : nodes) {
        const LogScope scope(logContext(*node));
        attempt([&] { startThread(*node); });
        if (!node->thread.joinable()) {
            execute(*node); // the run has failed: only closes the action
        }
    }
}

void Run::Private::startThread(RunNode &node)
{
    try {
        node.thread = std::jthread([this, &node] { execute(node); });
    } catch (const std::system_error &error) { // its text is only the system's reason
        throw std::runtime_error("cannot start a thread: " + error.code().message());
    }
}

/// Ends a run in which an action failed to start: closes those that did start and runs none.
void Run::Private::closeInitialised()
{
    for (const auto &node : nodes) {
        const LogScope scope(logContext(*node));
        if (node->initialised) {
            attempt([&] { node->action->close(); });
        }
        node->state = closedState(*node->action, true);
    }
}

/// The function of an action's thread.
void Run::Private::execute(RunNode &node) noexcept
{
    const LogScope scope(logContext(node));
    const platform::StopScope stop([&node] { return !node.control->isRunning(); });
    const RunFiles::Scope filesScope(files);
    sequence.waitToStart(node.action->m_idx, control);
    node.state = ActionProgress::State::Running;
    node.ports->gate().release();
    runAndClose(node);
    node.state = closedState(*node.action, isEnded(node));
    // Notify with the mutex held: the owner may destroy this object as soon as it sees 0.
    const std::lock_guard lock(mutex);
    if (--running == 0) {
        ended.notify_all();
    }
}

Run::Run(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions options)
    : d(std::make_unique<Private>())
{
    d->build(graph, registry, options);
}

Run::~Run()
{
    // Both are harmless for a run that has ended.
    stop();
    wait();
    if (d->isAbandoned) {
        static_cast<void>(d.release()); // threads use it
    }
}

void Run::start()
{
    // stop() may have been called already; the status is then no longer Idle and stays Stopped.
    int expected = RunControl::Idle;
    if (d->control.runStatus.compare_exchange_strong(expected, RunControl::Running)) {
        for (const auto &node : d->nodes) {
            expected = RunControl::Idle;
            node->ownControl.runStatus.compare_exchange_strong(expected, RunControl::Running);
        }
    }
    d->initActions();
    if (d->control.isRunning()) {
        d->startThreads();
    } else {
        d->closeInitialised();
    }
}

/// How long the actions may take to stop. One that is completing or removing its files may wait for
/// the device.
Run::Private::Clock::duration Run::Private::stopLimit() const
{
    constexpr int kCloseFactor = 6;
    const bool isClosing = std::ranges::any_of(
        nodes, [](const auto &node) { return node->closing && !node->isFinished(); });
    return isClosing ? kCloseFactor * stopTimeout : stopTimeout;
}

bool Run::Private::isOverdue() const
{
    const Clock::rep time = releaseTime;
    return time != 0 && Clock::now().time_since_epoch().count() - time > stopLimit().count();
}

/// Gives up the threads of actions that do not stop. They continue to use this object, which is
/// therefore never destroyed.
void Run::Private::abandon()
{
    const double seconds = std::chrono::duration<double>(stopLimit()).count();
    for (const auto &node : nodes) {
        if (!node->isFinished() && node->thread.joinable()) {
            const LogScope scope(logContext(*node));
            MainUI::addLog(
                MainUI::Error,
                u"Error: the action '%1' (%2) has not stopped within %3 seconds and is abandoned\n"_s
                    .arg(node->id, node->type, QString::number(seconds)));
            node->thread.detach();
            isAbandoned = true;
        }
    }
    if (isAbandoned) {
        ownLog.setTarget(nullptr);
    }
}

bool Run::waitFor(std::chrono::milliseconds timeout)
{
    // After the end of the run the actions have a limited time to stop.
    constexpr std::chrono::milliseconds kTick(100);
    const auto deadline = Private::Clock::now() + timeout;
    std::unique_lock lock(d->mutex);
    const auto hasEnded = [&] { return d->running == 0 || d->isAbandoned; };
    while (!hasEnded() && Private::Clock::now() < deadline) {
        const auto next = std::min(deadline, Private::Clock::now() + kTick);
        if (!d->ended.wait_until(lock, next, hasEnded) && d->isOverdue()) {
            lock.unlock();
            d->abandon();
            lock.lock();
        }
    }
    return hasEnded();
}

void Run::wait()
{
    while (!waitFor(std::chrono::hours(1))) {
    }
    // Without the mutex, which the last thread holds while it notifies.
    for (const auto &node : d->nodes) {
        if (node->thread.joinable()) {
            node->thread.join();
        }
    }
}

bool Run::hasAbandoned() const
{
    return d->isAbandoned;
}

void Run::stop()
{
    // Before start() the status is Idle; endRun() changes only a status of Running.
    int expected = RunControl::Idle;
    d->control.runStatus.compare_exchange_strong(expected, RunControl::Stopped);
    d->endRun(RunControl::Stopped);
}

bool Run::stopReading()
{
    bool hasStopped = false;
    for (const auto &node : d->nodes) {
        if (node->control != &d->control && node->ports->pinsIn() == 0) {
            d->endAlone(*node, RunControl::Stopped);
            hasStopped = true;
        }
    }
    return hasStopped;
}

bool Run::succeeded() const
{
    return std::all_of(d->nodes.begin(), d->nodes.end(),
                       [](const auto &node) { return node->control->isRunning(); }) &&
           d->control.isRunning();
}

bool Run::failed() const
{
    return d->control.runStatus == RunControl::Failed ||
           std::any_of(d->nodes.begin(), d->nodes.end(), [](const auto &node) {
               return node->control->runStatus == RunControl::Failed;
           });
}

const CorvantaGraph::Problems &Run::problems() const
{
    return d->problems;
}

QVector<ActionProgress> Run::progress() const
{
    return mapped<QVector<ActionProgress>>(d->nodes, [](const auto &node) {
        return progressOf(node->id, *node->action, *node->ports, node->state);
    });
}

const RunControl &Run::control() const
{
    return d->control;
}

ActionItem *Run::action(int index) const
{
    return d->nodes[static_cast<size_t>(index)]->action.get();
}

} // namespace corvanta
