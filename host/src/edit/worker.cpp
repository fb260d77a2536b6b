// Who owns what: a worker and its threads share a Shared. A thread takes the next work from it and
// leaves the result there, and the worker's timer takes the result. Each thread looks for the next
// work before it ends. The threads are detached: joining one could last until a drive answers.
#include "corvanta/edit/worker.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

constexpr int kPollMs = 20;
/// How long the end of the program waits for threads. Work that only computes ends in this time, so
/// that it does not use what the end destroys; a call for a drive that does not answer may last
/// longer.
constexpr std::chrono::seconds kMaxEnd{5};

QString reasonOf(const std::exception_ptr &failure)
{
    try {
        std::rethrow_exception(failure);
    } catch (const std::bad_alloc &) {
        return Worker::tr("There is not enough memory.");
    } catch (const std::exception &error) {
        return QString::fromUtf8(error.what());
    }
}

} // namespace

struct Worker::Result
{
    /// The work is destroyed when this returns.
    static Result of(Work &&given, const std::stop_token &stop) noexcept
    {
        const Work work = std::move(given);
        try {
            return {work(stop), nullptr};
        } catch (const std::exception &) {
            return {nullptr, std::current_exception()};
        }
    }

    Show show;
    std::exception_ptr failure; // null: none
};

/// Guarded by the mutex of the threads, except that only the GUI thread replaces `stop`.
struct Worker::Shared
{
    Work next;                    // null: there is none, or it has begun
    std::stop_source stop;        // of the newest work
    std::optional<Result> result; // of the newest work
    int threads = 0;
};

/// The threads of all workers.
class Worker::Threads
{
public:
    /// Never destroyed: a thread may exist until the program has ended.
    static Threads &all()
    {
        static auto *const threads = new Threads;
        return *threads;
    }

    /// Start a thread for shared->next, unless there are too many. Call it with the mutex locked.
    void add(const std::shared_ptr<Shared> &shared)
    {
        if (shared->threads < kMaxThreads) {
            m_running.reserve(m_running.size() + 1);
            std::thread([this, shared] { runAll(shared); }).detach();
            m_running.push_back(shared);
            ++shared->threads;
        }
    }

    std::mutex mutex;

private:
    // While Qt still works: the threads use it.
    Threads()
    {
        qAddPostRoutine([] { all().end(); });
    }

    void runAll(const std::shared_ptr<Shared> &shared)
    {
        std::unique_lock lock(mutex);
        while (shared->next) {
            Work work = std::exchange(shared->next, nullptr);
            const std::stop_token stop = shared->stop.get_token();
            lock.unlock();
            Result result = Result::of(std::move(work), stop);
            lock.lock();
            if (!stop.stop_requested()) {
                shared->result = std::move(result);
            }
        }
        --shared->threads;
        m_running.erase(std::find(m_running.begin(), m_running.end(), shared));
        m_ended.notify_all();
    }

    /// Stop all work, and wait a little for it.
    void end()
    {
        std::unique_lock lock(mutex);
        for (const std::shared_ptr<Shared> &shared : m_running) {
            shared->next = nullptr;
            shared->stop.request_stop();
        }
        m_ended.wait_for(lock, kMaxEnd, [this] { return m_running.empty(); });
    }

    std::vector<std::shared_ptr<Shared>> m_running; // one entry per thread; guarded by mutex
    std::condition_variable m_ended;
};

Worker::Worker()
    : m_shared(std::make_shared<Shared>())
{
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
}

Worker::~Worker()
{
    stop();
}

void Worker::start(Work work, Failed failed)
{
    stop();
    m_failed = std::move(failed);
    m_timer.start();
    const std::lock_guard lock(Threads::all().mutex);
    try {
        m_shared->stop = std::stop_source();
        m_shared->next = std::move(work);
        Threads::all().add(m_shared);
    } catch (const std::exception &) {
        m_shared->next = nullptr;
        m_shared->result = Result{nullptr, std::current_exception()};
    }
}

/// The result of work that is stopped is never shown.
void Worker::stop()
{
    m_timer.stop();
    // Before the lock: it calls what the work has registered for it.
    m_shared->stop.request_stop();
    const std::lock_guard lock(Threads::all().mutex);
    m_shared->next = nullptr;
    m_shared->result.reset();
}

void Worker::poll()
{
    std::optional<Result> result;
    {
        const std::lock_guard lock(Threads::all().mutex);
        result.swap(m_shared->result);
    }
    if (!result) {
        return;
    }
    // Before the result is shown, which may start other work or delete the widget.
    m_timer.stop();
    const Failed failed = std::move(m_failed);
    if (result->failure != nullptr) {
        failed(reasonOf(result->failure));
    } else if (result->show) {
        result->show();
    }
}

} // namespace corvanta
