// Runs a graph with one thread per action; rows are sent between them in batches.
//
//     Run run(graph, registry, {.log = &log});
//     run.start();
//     while (!run.waitFor(50ms)) { show(run.progress()); }
//     run.wait();
//     return run.succeeded();
//
// The first failure or stop ends all actions. Each action that was initialised is closed exactly
// once, whatever happens.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/export.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <chrono>
#include <memory>
#include <numeric>
#include <vector>

class LogSink;

namespace corvanta {

class ActionRegistry;

/// An action outside the graph that reads one of its output pins.
struct Listener
{
    QString id;                         ///< for messages and progress
    CorvantaGraph::Pin from;            ///< must exist, see CorvantaGraph::hasOutputPin()
    std::unique_ptr<ActionItem> action; ///< with one input pin; the run takes it
    /// After this many rows the action that is read ends without an error; the actions that it
    /// depends on continue. With 0 its run function is never called. Negative: no limit.
    qint64 maxRows = -1;
};

/// How a graph is run; the initialisers are the usual values.
struct RunOptions
{
    QMap<QString, QString> variables; ///< by name, without "${" and "}"; override the graph's
    QString outDir;                   ///< empty: the graph's folder
    QString compression;              ///< see GlobalParameters::compression()
    LogSink *log = nullptr;           ///< null: the program's sink
    int batchRows = 1024;             ///< maximum number of rows in a batch
    bool yieldAtBatches = false;      ///< request a yield at every batch, for tests of actions
    /// When an action that others read fails after its first row, end its data there: the actions
    /// that read it complete their files. The run has failed all the same.
    bool keepPartial = false;
    std::vector<Listener> listeners; ///< previews and taps
    /// How long after a stop or a failure the run waits for actions that do not end, six times as
    /// long if one of them is in close(); see Run::hasAbandoned().
    std::chrono::milliseconds stopTimeout = std::chrono::seconds(10);
};

/// The progress of one action. The numbers of different actions are not read at the same instant.
struct ActionProgress
{
    /// From Done on the action is closed.
    enum class State {
        Waiting, ///< for its first row, or for another action that uses the same file
        Running,
        Done,
        Warned, ///< done, with a warning
        Failed,
        Stopped, ///< the run ended before it was done
    };

    QString id;
    QString type;
    qint64 rowsIn = 0;       ///< rows taken, summed over the input pins
    QVector<qint64> rowsOut; ///< rows sent by each output pin, also if no action reads it
    float fraction = -1;     ///< done, 0 to 1; negative: not known
    State state = State::Waiting;

    bool isFinished() const { return state >= State::Done; }
    /// Rows sent, summed over the output pins.
    qint64 allRowsOut() const { return std::accumulate(rowsOut.begin(), rowsOut.end(), qint64(0)); }
};

/// One run of one graph. Threads: the owner's, except that stop() and progress() may be called from
/// any thread.
class CORVANTA_EXPORT Run
{
public:
    /// Create the actions and connect their pins. The graph must have passed validate() with the
    /// same variables, and the pins of the listeners must exist. The registry and the log must
    /// outlive the run; the graph need not. Throws std::bad_alloc if there is no memory.
    Run(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions options);
    ~Run(); ///< stops and waits

    /// What makes the run impossible: actions whose files exclude each other, for example two that
    /// create the same file. Such a run should not be started.
    const CorvantaGraph::Problems &problems() const;
    /// Initialise all actions on the calling thread and start their threads. Call once. If an
    /// action fails to initialise, the run has ended when start() returns.
    void start();
    /// Wait until the run ends or `timeout` has passed. Returns true if the run has ended; then
    /// every action is closed, unless hasAbandoned().
    bool waitFor(std::chrono::milliseconds timeout);
    /// Wait until the run ends, and join its threads.
    void wait();
    /// Make the run end soon, without an error; the status becomes RunControl::Stopped.
    void stop();
    /// With RunOptions::keepPartial, end the data of the actions without input, so that the run
    /// completes its files and ends soon; it has then not succeeded. Returns false without it.
    bool stopReading();

    /// True if no action failed and the run was not stopped. Call after the end.
    bool succeeded() const;
    /// True if an action failed. Call after the end.
    bool failed() const;
    /// True if an action did not end in time (RunOptions::stopTimeout). Its thread then continues,
    /// and its memory is never freed; the error in the log names it. All other actions are closed.
    /// A program ends best with std::_Exit(), because that thread may use static objects.
    bool hasAbandoned() const;
    /// The progress of all actions, listeners last.
    QVector<ActionProgress> progress() const;
    /// The state that the actions see. Threads: any.
    const RunControl &control() const;
    /// The action number `index` of the graph; listeners follow. Owned by the run.
    ActionItem *action(int index) const;

private:
    struct Private; // in engine/run.cpp
    std::unique_ptr<Private> d;
};

} // namespace corvanta
