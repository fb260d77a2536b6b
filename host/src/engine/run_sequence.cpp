// One mutex for all actions: they wait rarely, and change state twice per run.
#include "engine/run_sequence.h"

#include <algorithm>

namespace corvanta {

void RunSequence::set(const TargetOrder &order)
{
    m_startAfter = order.startAfter;
    m_closeAfter = order.closeAfter;
    m_states.resize(order.startAfter.size());
}

void RunSequence::waitToStart(int action, const RunControl &control)
{
    wait(m_startAfter[action], &State::isClosed, control);
}

void RunSequence::waitToClose(int action, const RunControl &control)
{
    wait(m_closeAfter[action], &State::isRead, control);
}

void RunSequence::set(int action, bool State::*what)
{
    const std::lock_guard lock(m_mutex);
    m_states[action].*what = true;
    m_changed.notify_all();
}

void RunSequence::wait(const QVector<int> &actions, bool State::*what, const RunControl &control)
{
    const auto has = [&](int action) { return m_states.at(action).*what; };
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [&] { return !control.isRunning() || std::ranges::all_of(actions, has); });
}

void RunSequence::wakeAll()
{
    // With the mutex, so that a thread between its check and its wait is woken too.
    const std::lock_guard lock(m_mutex);
    m_changed.notify_all();
}

} // namespace corvanta
