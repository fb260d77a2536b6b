// Runs a graph with one thread per action; rows are sent between them in batches.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/export.h"

#include <QMap>
#include <QString>
#include <QVector>

#include <chrono>
#include <memory>
#include <vector>

class LogSink;

namespace corvanta {

class ActionRegistry;

/// An action outside the graph that reads one of its output pins.
struct Listener
{
    QString id; ///< for messages and progress
    CorvantaGraph::Pin from;
    std::unique_ptr<ActionItem> action; ///< with one input pin
    /// After this many rows the action that is read ends without an error; the actions that it
    /// depends on continue. With 0 its run function is never called. Negative: no limit.
    qint64 maxRows = -1;
};

struct RunOptions
{
    QMap<QString, QString> variables; ///< override the graph's
    QString outDir;                   ///< empty: the graph's folder
    QString compression;              ///< see GlobalParameters::compression()
    LogSink *log = nullptr;           ///< null: the program's sink
    int batchRows = 1024;             ///< maximum number of rows in a batch
    bool yieldAtBatches = false;      ///< request a yield at every batch, for tests of actions
    std::vector<Listener> listeners;  ///< previews and taps
};

/// The progress of one action.
struct ActionProgress
{
    QString id;
    QString type;
    qint64 rowsIn = 0;
    qint64 rowsOut = 0;
    float fraction = -1; ///< done, 0 to 1; negative: not known
    bool finished = false;
};

/// One run of one graph. Threads: the owner's, except that stop() and progress() may be called from
/// any thread.
class CORVANTA_EXPORT Run
{
public:
    /// The graph must have passed validate() with the same variables. The log must outlive the run.
    Run(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions options);
    ~Run(); ///< stops and waits

    /// Initialise all actions and start their threads.
    void start();
    /// Wait until the run ends or `timeout` has passed. Returns true if the run has ended; then
    /// every action is closed.
    bool waitFor(std::chrono::milliseconds timeout);
    void wait();
    /// Make the run end soon, without an error; the status becomes RunControl::Stopped.
    void stop();

    /// True if no action failed and the run was not stopped. Call after the end.
    bool succeeded() const;
    /// True if an action failed. Call after the end.
    bool failed() const;
    /// The progress of all actions, listeners last.
    QVector<ActionProgress> progress() const;
    const RunControl &control() const;
    /// The action number `index` of the graph; listeners follow. Owned by the run.
    ActionItem *action(int index) const;

private:
    struct Private; // in engine/run.cpp
    std::unique_ptr<Private> d;
};

} // namespace corvanta
