// Compresses pages on worker threads while the caller adds more rows.
#pragma once
#include "codecs/parquet/encoding/codec.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace corvanta::parquet {

/// A page that is being compressed. A worker sets `isDone` last; `compressed` and `hasFailed` may
/// be read only after that.
struct PendingPage
{
    /// The input; removed when the page is done.
    std::vector<char> raw;
    /// The result.
    std::vector<char> compressed;
    /// Maximum size of `compressed`; set by submit().
    size_t maxBytes = 0;
    /// Whether the page could not be compressed, because of a lack of memory.
    bool hasFailed = false;
    std::atomic<bool> isDone = false;
};

/// A queue of pages and the threads that compress them. Several writers may share one compressor.
/// Threads: submit(), wait() and takeBuffer() from one thread at a time.
class PageCompressor
{
public:
    /// Start `workers` threads. With 0, submit() and wait() compress the pages. `codec` is a
    /// CodecNumber that makeCompressor() supports, or kUncompressed.
    PageCompressor(qint32 codec, int workers);
    /// Joins the threads. Pages that are still waiting are not compressed.
    ~PageCompressor();
    PageCompressor(const PageCompressor &) = delete;
    PageCompressor &operator=(const PageCompressor &) = delete;

    /// The codec that was given to the constructor, for the metadata of the chunks.
    qint32 codec() const { return m_codec; }

    /// Queue a page. Compresses pages itself while too many of them wait.
    std::shared_ptr<PendingPage> submit(std::vector<char> raw);
    /// Wait until the page is done. Compresses other pages while it waits.
    void wait(const PendingPage &page);
    /// An empty buffer, with the memory of an earlier page if possible.
    std::vector<char> takeBuffer();

private:
    // Shared with the writer that waits for the page.
    using Job = std::shared_ptr<PendingPage>;
    void work();
    void compress(PendingPage &page, Compressor *compressor, std::vector<char> &scratch) const;
    void runOne(std::unique_lock<std::mutex> &lock, Compressor *compressor,
                std::vector<char> &scratch);

    const qint32 m_codec;
    std::unique_ptr<Compressor> m_ownCompressor; // used by the submitting thread
    std::vector<char> m_ownScratch;

    std::mutex m_mutex; // guards the members below
    // m_added: the queue has a new page, or the threads must end. m_done: a page is done.
    std::condition_variable m_added;
    std::condition_variable m_done;
    std::deque<Job> m_queue;
    // Input buffers of pages that are done, for takeBuffer().
    std::vector<std::vector<char>> m_spare;
    bool m_isStopped = false;
    std::vector<std::thread> m_workers;
};

} // namespace corvanta::parquet
