// corvanta/run.h
// Runs a graph: one thread per action, rows in batches between them.
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
    /// The action that is read from ends, all well, after as many rows; with 0 it is not even
    /// started. Those before it go on. Negative: no limit.
    qint64 mostRows = -1;
};

struct RunOptions
{
    QMap<QString, QString> variables; ///< win over the graph's
    QString outDir;                   ///< empty: the graph's folder
    QString compression;              ///< see GlobalParameters::compression()
    LogSink *log = nullptr;           ///< null: the program's sink
    int batchRows = 1024;             ///< rows handed over at once, at most
    bool yieldAtBatches = false; ///< ask for a yield at every batch, to try the actions' yielding
    std::vector<Listener> listeners; ///< previews and taps
};

/// How far one action is.
struct ActionProgress
{
    QString id;
    QString type;
    qint64 rowsIn = 0;
    qint64 rowsOut = 0;
    float fraction = -1; ///< 0 to 1; negative: not known
    bool finished = false;
};

/// One run of one graph. Threads: the owner's, except that stop() and progress() may be called from
/// any.
class CORVANTA_EXPORT Run
{
public:
    /// The graph must have passed validate() with the same variables.
    Run(const CorvantaGraph &graph, const ActionRegistry &registry, RunOptions options);
    ~Run(); ///< stops and waits

    /// Initialise all actions and start their threads.
    void start();
    /// Wait for the end, or `timeout`; true when the run has ended. After it every action is
    /// closed.
    bool waitFor(std::chrono::milliseconds timeout);
    void wait();
    /// End the run soon, without an error: RunControl::Stopped.
    void stop();

    /// True when no action failed and nobody stopped it. After the end.
    bool succeeded() const;
    bool failed() const;
    QVector<ActionProgress> progress() const;
    const RunControl &control() const;
    ActionItem *action(int index) const;

private:
    struct Private;
    std::unique_ptr<Private> d;
};

} // namespace corvanta
