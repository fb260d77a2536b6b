// The thread takes owners in the order in which they asked, and ends when none is left. It is
// detached: a call of the system that never returns must not keep the program from ending.
#include "panels/background_check.h"

#include <QCoreApplication>
#include <QEvent>

#include <deque>
#include <mutex>
#include <thread>

namespace corvanta {

/// What the thread knows about an owner. Guarded by the mutex of the queue.
struct BackgroundCheck::Slot
{
    BackgroundCheck *owner = nullptr; // null: gone
    Check next;                       // the latest one, if it has not begun
    Show result;                      // of the latest one, if it has ended
    int started = 0;                  // number of checks that the owner has started
};

namespace {

/// The owners that wait, shared by the thread and all of them.
template <class Slot> struct Queue
{
    std::mutex mutex;
    std::deque<std::shared_ptr<Slot>> waiting;
    bool isRunning = false;

    static const std::shared_ptr<Queue> &instance()
    {
        static const auto queue = std::make_shared<Queue>();
        return queue;
    }
};

/// Without memory there is no result; the next edit checks again.
BackgroundCheck::Show resultOf(const BackgroundCheck::Check &check)
{
    try {
        return check ? check() : BackgroundCheck::Show();
    } catch (const std::bad_alloc &) {
        return {};
    }
}

/// Until no owner waits. Each check runs without the lock.
template <class Slot> void runAll(const std::shared_ptr<Queue<Slot>> &queue)
{
    std::unique_lock lock(queue->mutex);
    while (!queue->waiting.empty()) {
        const std::shared_ptr<Slot> slot = queue->waiting.front();
        queue->waiting.pop_front();
        const auto check = std::exchange(slot->next, {});
        const int number = slot->started;
        lock.unlock();
        auto show = resultOf(check);
        lock.lock();
        if (slot->owner != nullptr && slot->started == number) {
            slot->result = std::move(show);
            // Qt drops the event with its owner.
            QCoreApplication::postEvent(slot->owner, new QEvent(QEvent::User));
        }
    }
    queue->isRunning = false;
}

} // namespace

BackgroundCheck::BackgroundCheck()
    : m_slot(std::make_shared<Slot>())
{
    m_slot->owner = this;
}

BackgroundCheck::~BackgroundCheck()
{
    const std::lock_guard lock(Queue<Slot>::instance()->mutex);
    m_slot->owner = nullptr;
    m_slot->next = {};
    m_slot->result = {};
}

void BackgroundCheck::customEvent(QEvent * /*event*/)
{
    Show show;
    {
        const std::lock_guard lock(Queue<Slot>::instance()->mutex);
        show = std::exchange(m_slot->result, {});
    }
    // Empty when an event before this one has shown it, or a newer check has begun.
    if (show) {
        show();
    }
}

void BackgroundCheck::start(Check check)
{
    const auto queue = Queue<Slot>::instance();
    const std::lock_guard lock(queue->mutex);
    const bool isWaiting = static_cast<bool>(m_slot->next);
    m_slot->next = std::move(check);
    m_slot->result = {};
    ++m_slot->started;
    if (m_slot->next && !isWaiting) {
        queue->waiting.push_back(m_slot);
    }
    if (!queue->waiting.empty() && !queue->isRunning) {
        queue->isRunning = true;
        std::thread(runAll<Slot>, queue).detach();
    }
}

} // namespace corvanta
