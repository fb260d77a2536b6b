// Workers take pages from one queue in order. Each worker has its own compressor, and a scratch
// buffer of the maximum size, so that a finished page keeps only the memory that it needs.
#include "codecs/parquet/write/page_compressor.h"

#include <exception>
#include <new>

namespace corvanta::parquet {

namespace {
/// Number of waiting pages above which the submitting thread compresses too, and number of spare
/// buffers.
constexpr size_t kMaxWaiting = 8;
constexpr size_t kMaxSpare = 16;
} // namespace

PageCompressor::PageCompressor(qint32 codec, int workers)
    : m_codec(codec)
    , m_ownCompressor(makeCompressor(codec))
{
    try {
        for (int i = 0; i < workers; ++i) {
            m_workers.emplace_back([this] { work(); });
        }
    } catch (const std::exception &) {
        // Fewer threads give the same result, and those that have started must be joined.
    }
}

// Workers may wait for a page: wake them before they are joined.
PageCompressor::~PageCompressor()
{
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_added.notify_all();
    }
    for (std::thread &worker : m_workers) {
        worker.join();
    }
}

void PageCompressor::compress(PendingPage &page, Compressor *compressor,
                              std::vector<char> &scratch) const
{
    try {
        if (compressor == nullptr) {
            page.compressed = page.raw;
            return;
        }
        // Grows only: pages of one file have similar sizes.
        scratch.resize(std::max(scratch.size(), page.maxBytes));
        const auto size = compressor->compress(page.raw, scratch.data());
        page.hasFailed = !size;
        if (size) {
            page.compressed.assign(scratch.begin(), scratch.begin() + static_cast<qptrdiff>(*size));
        }
    } catch (const std::bad_alloc &) { // on a worker thread nothing else would catch it
        page.hasFailed = true;
    }
}

/// Compress the first page of the queue. Releases the lock while it compresses.
void PageCompressor::runOne(std::unique_lock<std::mutex> &lock, Compressor *compressor,
                            std::vector<char> &scratch)
{
    const Job job = std::move(m_queue.front());
    m_queue.pop_front();
    lock.unlock();
    compress(*job, compressor, scratch);
    lock.lock();
    if (m_spare.size() < kMaxSpare) {
        m_spare.push_back(std::move(job->raw));
    }
    job->raw = {}; // frees the memory if it was not moved
    job->isDone.store(true, std::memory_order_release);
    m_done.notify_all();
}

void PageCompressor::work()
{
    const std::unique_ptr<Compressor> compressor = makeCompressor(m_codec);
    std::vector<char> scratch;
    std::unique_lock lock(m_mutex);
    for (;;) {
        m_added.wait(lock, [this] { return m_isStopped || !m_queue.empty(); });
        if (m_isStopped) {
            return;
        }
        runOne(lock, compressor.get(), scratch);
    }
}

std::shared_ptr<PendingPage> PageCompressor::submit(std::vector<char> raw)
{
    auto job = std::make_shared<PendingPage>();
    // Known before the compression, so that a writer can decide whether it has to wait for the
    // size.
    job->maxBytes = m_ownCompressor ? m_ownCompressor->maxBytes(raw.size()) : raw.size();
    job->raw = std::move(raw);
    std::unique_lock lock(m_mutex);
    m_queue.push_back(job);
    m_added.notify_one();
    // Bounds the memory, and uses the time in which the caller would otherwise wait.
    while (m_queue.size() > kMaxWaiting) {
        runOne(lock, m_ownCompressor.get(), m_ownScratch);
    }
    return job;
}

void PageCompressor::wait(const PendingPage &page)
{
    std::unique_lock lock(m_mutex);
    while (!page.isDone.load(std::memory_order_acquire)) {
        if (m_queue.empty()) { // a worker has the page
            m_done.wait(lock);
        } else {
            runOne(lock, m_ownCompressor.get(), m_ownScratch);
        }
    }
}

std::vector<char> PageCompressor::takeBuffer()
{
    const std::lock_guard lock(m_mutex);
    if (m_spare.empty()) {
        return {};
    }
    std::vector<char> buffer = std::move(m_spare.back());
    m_spare.pop_back();
    buffer.clear();
    return buffer;
}

} // namespace corvanta::parquet
