// Makes the actions of a run that use one file wait for each other.
#pragma once
#include "corvanta/action_item.h"
#include "engine/target_order.h"

#include <condition_variable>
#include <mutex>

namespace corvanta {

/// Numbers of actions are their indexes. set() comes before all other calls. Threads: each waits
/// for the action that it runs; the others may be called from any thread. Every wait ends with the
/// run: the one who ends it calls wakeAll().
class RunSequence
{
public:
    /// Begin a run. No thread waits yet.
    void set(const TargetOrder &order);
    /// Whether the action must wait before it starts. Its input then waits too.
    bool startsLater(int action) const { return !m_startAfter[action].isEmpty(); }
    /// Whether the action must wait before it replaces its targets.
    bool closesLater(int action) const { return !m_closeAfter[action].isEmpty(); }

    /// Wait until the action may start, or the run has ended.
    void waitToStart(int action, const RunControl &control);
    /// Wait until the action may replace its targets, or the run has ended.
    void waitToClose(int action, const RunControl &control);
    /// The action takes no more input.
    void setRead(int action) { set(action, &State::isRead); }
    /// The action is closed: its targets are complete.
    void setClosed(int action) { set(action, &State::isClosed); }
    /// End all waits whose condition holds now, for example because the run has ended.
    void wakeAll();

private:
    struct State
    {
        bool isRead = false;
        bool isClosed = false;
    };
    void set(int action, bool State::*what);
    void wait(const QVector<int> &actions, bool State::*what, const RunControl &control);

    QVector<QVector<int>> m_startAfter; // constant after set(), like m_closeAfter
    QVector<QVector<int>> m_closeAfter;
    std::mutex m_mutex;
    std::condition_variable m_changed; // a state, or the end of the run
    QVector<State> m_states;           // guarded by m_mutex
};

} // namespace corvanta
