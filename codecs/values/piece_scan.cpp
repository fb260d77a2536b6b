// The text while it is scanned, from its beginning:
//
//     joined pieces | m_jobs: pieces in order | m_rest: after the last cut | not yet read
#include "codecs/values/piece_scan.h"

#include "codecs/values/chained_source.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace corvanta::values {

PieceScan::PieceScan(Format &format, std::span<ColumnScan> scans, int workers, qsizetype pieceBytes)
    : m_format(format)
    , m_scans(scans)
    , m_workerCount(workers)
    , m_pieceBytes(pieceBytes)
{
}

PieceScan::~PieceScan()
{
    stop();
}

int PieceScan::defaultWorkers()
{
    constexpr int kMaxWorkers = 3;
    return std::clamp(static_cast<int>(std::thread::hardware_concurrency()) - 1, 0, kMaxWorkers);
}

// ---- The calling thread.

/// Reads a piece and cuts it. One that cannot be cut, or after which the source failed, counts as
/// done and not complete.
std::unique_ptr<PieceScan::Job> PieceScan::readPiece(ByteSource &source)
{
    auto job = std::make_unique<Job>();
    QByteArray &text = job->piece.text;
    text = std::exchange(m_spare, {});
    text.resize(std::max(m_pieceBytes, m_rest.size() + 1));
    std::copy(m_rest.begin(), m_rest.end(), text.begin());
    const qint64 room = text.size() - m_rest.size();
    const qint64 got = readUpTo(source, text.data() + m_rest.size(), room, &m_hasFailed);
    m_isEnded = got < room;
    text.truncate(m_rest.size() + got);
    const std::string_view view(text.constData(), static_cast<size_t>(text.size()));
    const auto used = m_isEnded ? text.size() : static_cast<qsizetype>(m_format.cut(view));
    m_rest = text.mid(used);
    text.truncate(used);
    job->isDone = job->isTaken = m_hasFailed || used == 0;
    m_isEnded = m_isEnded || used == 0;
    return job;
}

void PieceScan::add(std::unique_ptr<Job> job)
{
    if (!m_isEnded && m_workers.empty()) {
        startWorkers();
    }
    const std::lock_guard lock(m_mutex);
    m_jobs.push_back(std::move(job));
    m_added.notify_one();
}

/// Waits until the first piece is scanned, and scans pieces in the meantime.
std::unique_ptr<PieceScan::Job> PieceScan::takeFirst()
{
    std::unique_lock lock(m_mutex);
    while (!m_jobs.front()->isDone) {
        if (Job *const job = findWork()) {
            scan(job, lock);
        } else {
            m_done.wait(lock);
        }
    }
    std::unique_ptr<Job> first = std::move(m_jobs.front());
    m_jobs.pop_front();
    return first;
}

/// Returns false if a value is an exception. Then some columns have the values of the piece
/// already, and adding them again changes nothing.
bool PieceScan::join(const Piece &piece)
{
    bool isJoined = true;
    for (size_t i = 0; i < m_scans.size(); ++i) {
        isJoined = m_scans[i].append(piece.scans[i]) && isJoined;
    }
    return isJoined;
}

void PieceScan::run(ByteSource &source)
{
    const auto most = static_cast<size_t>(2 * m_workerCount + 2);
    for (;;) {
        while (!m_isEnded && m_jobs.size() < most) { // only this thread changes the queue
            add(readPiece(source));
        }
        if (m_jobs.empty()) {
            return;
        }
        std::unique_ptr<Job> job = takeFirst();
        Piece &piece = job->piece;
        if (!piece.isComplete) {
            scanRest(std::move(job), source);
            return;
        }
        if (join(piece)) {
            m_format.skip(piece.rows, piece.lines);
        } else {
            MemorySource text(piece.text);
            m_format.scanInOrder(text);
        }
        m_spare = std::move(piece.text);
    }
}

void PieceScan::scanRest(std::unique_ptr<Job> first, ByteSource &source)
{
    stop();
    std::deque<QByteArray> texts{first->piece.text};
    for (const auto &job : m_jobs) {
        texts.push_back(job->piece.text);
    }
    texts.push_back(m_rest);
    m_jobs.clear();
    ChainedSource rest(std::move(texts), source, m_hasFailed);
    m_format.scanInOrder(rest);
}

// ---- The worker threads.

void PieceScan::startWorkers()
{
    try {
        for (int i = 0; i < m_workerCount; ++i) {
            m_workers.emplace_back([this] { work(); });
        }
    } catch (const std::exception &) {
        // Fewer threads give the same result, and those that have started must be joined.
    }
}

/// The first piece that no thread scans; null if there is none.
PieceScan::Job *PieceScan::findWork()
{
    const auto found = std::ranges::find_if(m_jobs, [](const auto &job) { return !job->isTaken; });
    return found == m_jobs.end() ? nullptr : found->get();
}

/// Scans a piece. Releases the lock while it does. The job stays until it is done.
void PieceScan::scan(Job *job, std::unique_lock<std::mutex> &lock)
{
    job->isTaken = true;
    lock.unlock();
    try {
        job->piece.scans.resize(m_scans.size());
        m_format.scan(&job->piece);
    } catch (const std::exception &) {
        job->piece.isComplete = false; // the calling thread scans it again, and throws if it must
    }
    lock.lock();
    job->isDone = true;
    m_done.notify_one();
}

void PieceScan::work()
{
    std::unique_lock lock(m_mutex);
    while (!m_isStopped) {
        if (Job *const job = findWork()) {
            scan(job, lock);
        } else {
            m_added.wait(lock);
        }
    }
}

/// Ends the threads, after the pieces that they scan.
void PieceScan::stop()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_added.notify_all();
    }
    for (std::thread &worker : m_workers) {
        worker.join();
    }
    m_workers.clear();
}

} // namespace corvanta::values
