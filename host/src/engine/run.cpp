// Runs a graph: connects the pins of its actions, starts one thread per action, and ends the run.
//
// Each thread calls its action's run function until that is finished or the run has ended, then
// closes the action and sends the end of its data. The first failure or stop changes the run
// status, closes all gates and wakes all actions, so that no thread stays blocked.
//
// Who waits for whom: a consumer waits in InputGate::pop() for its producers, a producer in
// InputGate::push() for room in a consumer's queue, an action in RunSequence for others that use
// its files, and the owner in wait() for all threads. No thread holds a lock while it waits for
// another one or calls an action. Links form no loop (CorvantaGraph::validate), orderByTargets()
// adds none, and an action that waits for others never blocks its producers: no waits form one.
#include "corvanta/run.h"

#include "base/platform/stop_scope.h"
#include "corvanta/action_parameters.h"
#include "corvanta/action_registry.h"
#include "corvanta/failure_reason.h"
#include "corvanta/main_ui.h"
#include "engine/action_progress.h"
#include "engine/graph_links.h"
#include "engine/pins.h"
#include "engine/run_sequence.h"
#include "graph/problem_list.h"
#include "run_files.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <mutex>
#include <stdexcept>
#include <system_error>
#include <thread>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

using ActionState = ActionProgress::State;

/// One action of the run, its pins and its thread.
struct Node
{
    QString id;
    std::unique_ptr<ActionItem> action;
    std::unique_ptr<Ports> ports;
    RunControl ownControl;         // of an action that ends alone, see RunOptions::keepPartial
    RunControl *control = nullptr; // what the action sees: its own, or that of the run
    std::atomic<bool> initialised = false; // atomic: releaseAll() reads it on any thread
    std::atomic<ActionState> state = ActionState::Waiting; // atomic: progress() reads it
    std::jthread thread; // the last member: joined before the others are destroyed
};

/// Logs what was thrown. Without the memory for the message there is none; the program then says
/// why the run failed.
void logException(const std::exception &error) noexcept
{
    try {
        const bool noMemory = dynamic_cast<const std::bad_alloc *>(&error) != nullptr;
        const QString text = noMemory ? u"not enough memory"_s : QString::fromUtf8(error.what());
        MainUI::addLog(MainUI::Error, u"Error: %1\n"_s.arg(text));
    } catch (const std::exception &) {
    }
}

} // namespace

struct Run::Private
{
    GlobalParameters global;
    RunControl control;
    LogSink *log = nullptr;
    std::vector<std::unique_ptr<Node>> nodes; // in the order of the graph, then the listeners
    RunSequence sequence;                     // of the actions that use one file
    CorvantaGraph::Problems problems;
    RunFiles files; // that the actions write

    std::mutex mutex;
    std::condition_variable ended;
    size_t running = 0;                 // threads that have not ended; guarded by mutex
    std::atomic<bool> released = false; // releaseAll() has been called

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
    void startThread(Node &node);
    void closeInitialised();
    void execute(Node &node) noexcept;
    template <class F> void attempt(F &&work) noexcept;
    void runAndClose(Node &node) noexcept;
    void callRun(Node &node);
    void endYield(const Node &node);
    void waitForReaders(const Node &node);
    void closeAction(Node &node);
    void syncNewFiles();
    void endRun(RunControl::Status status);
    void releaseAll();
    void giveOwnControl(const CorvantaGraph &graph, const CorvantaGraph::Pin &from);
    void endAlone(Node &node, RunControl::Status status);
    bool endedAlone(const Node &node) const;
    bool hasRowsToKeep(const Node &node) const;
    bool isEnded(const Node &node) const { return !control.isRunning() || endedAlone(node); }
    LogScope::Context logContext(const Node &node) const { return {log, node.id}; }
};

/// Adds an action that reads an output pin of the graph.
void Run::Private::addListener(const CorvantaGraph &graph, Listener &listener,
                               const PinOptions &options)
{
    add(listener.id, std::move(listener.action), 1, options);
    connect(graph, listener.from, nodes.size() - 1, 0);
    if (listener.maxRows >= 0) {
        Node &node = *nodes[static_cast<size_t>(graph.indexOf(listener.from.action))];
        node.ports->out(listener.from.pin).setLimit(listener.maxRows, &node.control->yieldRequest);
    }
}

/// Makes the actions with their pins and connects them; starts nothing.
void Run::Private::build(const CorvantaGraph &graph, const ActionRegistry &registry,
                         RunOptions &options)
{
    graph.applyTo(&global, options.variables, options.outDir);
    global.setCompression(options.compression);
    log = options.log;
    const PinOptions pinOptions{options.batchRows,
                                options.yieldAtBatches ? &control.yieldRequest : nullptr};
    for (const CorvantaGraph::Action &action : graph.actions) {
        add(action.id, registry.create(action.parameters, &global),
            highestLinkedPin(graph, action.id) + 1, pinOptions);
    }
    for (const CorvantaGraph::Link &link : graph.links) {
        connect(graph, link.from, static_cast<size_t>(graph.indexOf(link.to.action)), link.to.pin);
    }
    endUnlinkedPins(graph);
    if (options.keepPartial) {
        for (const CorvantaGraph::Link &link : graph.links) {
            giveOwnControl(graph, link.from);
        }
        for (const Listener &listener : options.listeners) {
            giveOwnControl(graph, listener.from);
        }
    }
    // After endUnlinkedPins(), which would end the pins of the listeners: the graph has no links to
    // them.
    for (Listener &listener : options.listeners) {
        addListener(graph, listener, pinOptions);
    }
    orderActions(graph, options.listeners);
}

/// The files of an action, as far as it declares them.
FileUser Run::Private::filesOf(const CorvantaGraph &graph, size_t index) const
{
    const Node &node = *nodes[index];
    const auto position = static_cast<qsizetype>(index);
    FileUser user{node.id, position < graph.actions.size() ? graph.actions[position].line : 0};
    if (const auto *const files = dynamic_cast<const ActionParameters *>(node.action.get())) {
        user.targets = files->targets();
        user.inputs = files->inputs();
    }
    return user;
}

/// Makes actions that use one file wait for each other, or finds that they exclude each other.
void Run::Private::orderActions(const CorvantaGraph &graph, const std::vector<Listener> &listeners)
{
    QVector<FileUser> users;
    for (size_t i = 0; i < nodes.size(); ++i) {
        users.append(filesOf(graph, i));
    }
    const QVector<std::pair<int, int>> links = linkedNodes(graph, listeners);
    const TargetOrder order = orderByTargets(users, links);
    ProblemList list(graph.fileName);
    for (const TargetConflict &conflict : order.conflicts) {
        list.add(conflict.line, conflict.text);
    }
    problems = list.problems();
    const bool hasNoCircle = isForest(static_cast<int>(nodes.size()), links + waitingNodes(order));
    sequence.set(order);
    files.setOrder(order);
    for (const auto &node : nodes) {
        Ports &ports = *node->ports;
        ports.endWithReaders(writesFiles(*node->action) ? nullptr : &node->control->yieldRequest);
        if (hasNoCircle) {
            ports.gate().boundAlways();
        }
        if (sequence.startsLater(node->action->m_idx)) {
            ports.gate().hold();
        }
    }
}

/// Ends the data of every input pin that has no link: it is a table without rows. Otherwise an
/// action that reads it would wait forever.
void Run::Private::endUnlinkedPins(const CorvantaGraph &graph)
{
    for (const auto &node : nodes) {
        for (int pin = 0; pin < node->ports->pinsIn(); ++pin) {
            if (!isLinked(graph, {node->id, pin})) {
                node->ports->gate().end(pin, std::make_shared<const TableSchema>());
            }
        }
    }
}

void Run::Private::add(const QString &id, std::unique_ptr<ActionItem> action, int pinsIn,
                       const PinOptions &options)
{
    auto node = std::make_unique<Node>();
    node->id = id;
    node->ports = std::make_unique<Ports>(pinsIn, action->m_nPinOut, options);
    action->m_idx = static_cast<int>(nodes.size());
    // Pins above the highest linked one do not exist; ActionItem treats them as empty tables.
    action->m_nPinIn = pinsIn;
    action->m_ports = node->ports.get();
    action->m_control = node->control = &control;
    node->action = std::move(action);
    nodes.push_back(std::move(node));
}

void Run::Private::connect(const CorvantaGraph &graph, const CorvantaGraph::Pin &from, size_t to,
                           int pin)
{
    Node &source = *nodes[static_cast<size_t>(graph.indexOf(from.action))];
    source.ports->out(from.pin).addReader(&nodes[to]->ports->gate(), pin);
}

/// Makes an action whose rows another one reads end alone.
void Run::Private::giveOwnControl(const CorvantaGraph &graph, const CorvantaGraph::Pin &from)
{
    Node &node = *nodes[static_cast<size_t>(graph.indexOf(from.action))];
    node.action->m_control = node.control = &node.ownControl;
}

/// Ends one action as if its data ended here.
void Run::Private::endAlone(Node &node, RunControl::Status status)
{
    // Before start() the status is Idle; start() then leaves it as it is set here.
    for (int expected : {RunControl::Idle, RunControl::Running}) {
        node.ownControl.runStatus.compare_exchange_strong(expected, status);
    }
    node.ownControl.yieldRequest = 1;
    if (node.initialised) {
        node.action->wakeAll();
    }
}

/// Whether the action has failed or was ended, and the run continues with the rows that it sent.
bool Run::Private::endedAlone(const Node &node) const
{
    return node.control != &control && !node.control->isRunning();
}

/// Whether a writer may get rows although this action has ended: its own, or those of another
/// reader.
bool Run::Private::hasRowsToKeep(const Node &node) const
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
    if (released.exchange(true)) {
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
        // An action that was not initialised has no threads, and perhaps no state to wake.
        if (node->initialised) {
            node->action->wakeAll();
        }
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
void Run::Private::callRun(Node &node)
{
    while (node.control->isRunning() && !node.ports->isComplete()) {
        if ((node.action.get()->*node.action->m_runFunction)()) {
            return;
        }
        endYield(node);
    }
}

/// Ends a request to yield: this action has yielded; the others yield at a later request. After the
/// end of the run the request stays set, because every thread must see it.
void Run::Private::endYield(const Node &node)
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

void Run::Private::closeAction(Node &node)
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

/// Calls a part of the work of an action. What throws is the engine itself (a full spill file, no
/// memory) or an action that does not catch what it throws; both fail the run.
template <class F> void Run::Private::attempt(F &&work) noexcept
{
    try {
        work();
    } catch (const std::exception &error) {
        endRun(RunControl::Failed);
        logException(error);
    } catch (...) {
        endRun(RunControl::Failed);
    }
}

/// Waits until the actions that read a target of this one have read all of it, or the run has
/// ended.
void Run::Private::waitForReaders(const Node &node)
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
void Run::Private::runAndClose(Node &node) noexcept
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

void Run::Private::startThread(Node &node)
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
void Run::Private::execute(Node &node) noexcept
{
    const LogScope scope(logContext(node));
    const platform::StopScope stop([&node] { return !node.control->isRunning(); });
    const RunFiles::Scope filesScope(files);
    sequence.waitToStart(node.action->m_idx, control);
    node.state = ActionState::Running;
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

bool Run::waitFor(std::chrono::milliseconds timeout)
{
    std::unique_lock lock(d->mutex);
    return d->ended.wait_for(lock, timeout, [&] { return d->running == 0; });
}

void Run::wait()
{
    std::unique_lock lock(d->mutex);
    d->ended.wait(lock, [&] { return d->running == 0; });
    // The last thread holds the mutex while it notifies, so join without it.
    lock.unlock();
    for (const auto &node : d->nodes) {
        if (node->thread.joinable()) {
            node->thread.join();
        }
    }
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
    QVector<ActionProgress> all;
    for (const auto &node : d->nodes) {
        all << progressOf(node->id, *node->action, *node->ports, node->state);
    }
    return all;
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
