// codecs/parquet/page_compressor.h
// Compresses pages beside the intake of rows.
#pragma once
#include "codecs/parquet/encoding/codec.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace corvanta::parquet {

/// A finished page on its way to the file.
struct PendingPage
{
    std::vector<char> raw;        ///< given; taken away once it is compressed
    std::vector<char> compressed; ///< when isDone
    size_t maxBytes = 0;          ///< that `compressed` can become
    bool isBad = false;           ///< when isDone: it could not be compressed
    std::atomic<bool> isDone = false;
};

/// A queue of pages and the threads that compress them; several writers may share one.
/// Threads: submit(), wait() and takeBuffer() by one at a time.
class PageCompressor
{
public:
    /// `workers` may be 0: then pages are compressed when they are submitted or waited for.
    PageCompressor(qint32 codec, int workers);
    ~PageCompressor();
    PageCompressor(const PageCompressor &) = delete;
    PageCompressor &operator=(const PageCompressor &) = delete;

    qint32 codec() const { return m_codec; }

    /// Have `raw` compressed. Helps with the work while too many pages wait.
    std::shared_ptr<PendingPage> submit(std::vector<char> raw);
    /// Until the page is done.
    void wait(const PendingPage &page);
    /// An empty buffer that has been used before, when there is one.
    std::vector<char> takeBuffer();

private:
    using Job = std::shared_ptr<PendingPage>;
    void work();
    void compress(PendingPage &page, Compressor *compressor, std::vector<char> &scratch) const;
    void runOne(std::unique_lock<std::mutex> &lock, Compressor *compressor,
                std::vector<char> &scratch);

    const qint32 m_codec;
    std::unique_ptr<Compressor> m_ownCompressor; // of the submitting thread
    std::vector<char> m_ownScratch;

    std::mutex m_mutex; // guards what follows
    std::condition_variable m_added;
    std::condition_variable m_done;
    std::deque<Job> m_queue;
    std::vector<std::vector<char>> m_spare;
    bool m_isStopped = false;
    std::vector<std::thread> m_workers;
};

} // namespace corvanta::parquet
