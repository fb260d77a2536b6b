// A thread for each piece of work; most take milliseconds.
#include "studio/document/background.h"

#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <chrono>
#include <exception>
#include <thread>

namespace corvanta::studio {

/// Shared by the thread and its owner; the last one frees it.
struct Background::Task
{
    Work work;
    Use use;
    std::stop_source stop;
    std::atomic<bool> hasEnded = false; // set after `use`
};

Background::Background()
{
    constexpr int kPollMs = 15;
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, &Background::poll);
}

Background::~Background()
{
    stop();
    QElapsedTimer clock;
    clock.start();
    for (const auto &task : m_active) {
        while (!task->hasEnded && clock.elapsed() < kMaxWaitMs) {
            QThread::msleep(1);
        }
    }
}

void Background::start(Work work)
{
    stop();
    m_current = std::make_shared<Task>();
    m_current->work = std::move(work);
    m_active.push_back(m_current);
    std::thread([task = m_current] {
        try {
            task->use = task->work(task->stop.get_token());
        } catch (const std::exception &) {
            task->use = nullptr; // no memory: the result is only a display
        }
        task->work = nullptr;
        task->hasEnded = true;
    }).detach();
    m_timer.start();
}

void Background::stop()
{
    if (m_current != nullptr) {
        m_current->stop.request_stop();
        m_current.reset();
    }
    m_timer.stop();
}

void Background::poll()
{
    if (m_current == nullptr || !m_current->hasEnded) {
        return;
    }
    const auto task = std::move(m_current);
    m_current.reset();
    m_timer.stop();
    std::erase_if(m_active, [](const auto &one) { return one->hasEnded.load(); });
    if (task->use) {
        task->use();
    }
}

} // namespace corvanta::studio
