// Who owns what: the worker and its thread share a Job. The thread writes the result into it, the
// worker takes it from there. A worker that is destroyed, or starts other work, only forgets its
// job; the thread keeps it until the work has ended.
#include "panels/background/worker.h"

#include <QCoreApplication>

#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace corvanta {

namespace {

constexpr int kPollMs = 20;

} // namespace

struct Worker::Job
{
    std::stop_source stop;
    std::mutex mutex;
    // Guarded by mutex:
    bool isDone = false;
    Show show;
    QString failure; // why there is no result

    void run(const Work &work)
    {
        Show result;
        QString reason;
        try {
            result = work(stop.get_token());
        } catch (const std::exception &error) {
            reason = QString::fromUtf8(error.what());
        }
        const std::lock_guard lock(mutex);
        show = std::move(result);
        failure = std::move(reason);
        isDone = true;
    }
};

/// The threads of all workers. They are joined when their work has ended: by the next start, or at
/// the end of the program. Threads: the GUI thread.
class Worker::Threads
{
public:
    static Threads &all()
    {
        static Threads threads;
        return threads;
    }

    void add(const std::shared_ptr<Job> &job, Work work)
    {
        std::erase_if(m_threads, [](const Entry &entry) {
            const std::lock_guard lock(entry.job->mutex);
            return entry.job->isDone;
        });
        m_threads.push_back({job, std::jthread([job, work = std::move(work)] { job->run(work); })});
    }

private:
    struct Entry
    {
        std::shared_ptr<Job> job;
        std::jthread thread; // joined by its destructor
    };

    // While Qt still works: the threads use it.
    Threads()
    {
        qAddPostRoutine([] { all().end(); });
    }
    void end()
    {
        for (const Entry &entry : m_threads) {
            entry.job->stop.request_stop();
        }
        m_threads.clear();
    }

    std::vector<Entry> m_threads;
};

Worker::Worker(QObject *parent)
    : QObject(parent)
{
    m_timer.setInterval(kPollMs);
    connect(&m_timer, &QTimer::timeout, this, [this] { poll(); });
}

Worker::~Worker()
{
    stop();
}

void Worker::start(Work work, std::function<void(const QString &)> failed)
{
    stop();
    const auto job = std::make_shared<Job>();
    Threads::all().add(job, std::move(work));
    m_job = job;
    m_failed = std::move(failed);
    m_timer.start();
}

void Worker::stop()
{
    m_timer.stop();
    if (const auto job = std::exchange(m_job, nullptr)) {
        job->stop.request_stop();
    }
}

void Worker::poll()
{
    Show show;
    QString failure;
    {
        const std::lock_guard lock(m_job->mutex);
        if (!m_job->isDone) {
            return;
        }
        show = std::move(m_job->show);
        failure = m_job->failure;
    }
    stop(); // before the result is shown, which may start other work
    if (show) {
        show();
    } else {
        m_failed(failure);
    }
}

} // namespace corvanta
