// Decodes the columns of a file on worker threads, ahead of the thread that takes the rows.
#pragma once
#include "codecs/parquet/read/column_reader.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace corvanta::parquet {

/// Delivers the blocks of each column in order. Decodes at most 3 blocks per column and about 64
/// MiB in total ahead. A caller that needs a block not yet started decodes it itself, so that the
/// result does not depend on the number of workers. Threads: take() from one thread, stop() from
/// any.
class DecodeAhead
{
public:
    /// Start `workers` threads. With 0, take() decodes everything.
    DecodeAhead(std::vector<std::unique_ptr<ColumnReader>> columns, int workers);
    /// Stops and joins the threads.
    ~DecodeAhead();
    DecodeAhead(const DecodeAhead &) = delete;
    DecodeAhead &operator=(const DecodeAhead &) = delete;

    /// Replace `block` with the next block of a column (0-based). Returns false at the end of the
    /// column and after stop(); `block` is then null. Reuses the memory of the old block.
    /// Errors: BadData, NoMemory; a later call returns the same fault.
    Result<bool, Error> take(size_t column, std::unique_ptr<CellBlock> &block);

    /// Ask the workers to end. Later calls of take() return false.
    void stop();

private:
    using Answer = Result<bool, Error>;
    // A column, with the blocks that are decoded but not taken.
    struct Lane
    {
        std::unique_ptr<ColumnReader> reader; // used by the thread that set isBusy
        std::deque<std::unique_ptr<CellBlock>> ready;
        // Taken blocks that were given back; their memory is used again.
        std::vector<std::unique_ptr<CellBlock>> spare;
        std::optional<Answer> end; // the final result: false, or a fault
        bool isBusy = false;
    };
    void work();
    // Whether no thread decodes the lane, it has not ended, and its queue is not full.
    bool canDecode(const Lane &lane) const;
    Lane *chooseLane();
    void decode(Lane &lane, std::unique_lock<std::mutex> &lock);

    std::mutex m_mutex; // guards everything below except the readers
    // A block was added or taken, a lane ended, or stop() was called.
    std::condition_variable m_changed;
    std::vector<Lane> m_lanes;
    size_t m_next = 0; // index of the lane where the search for work starts
    // Memory of all blocks in `ready`, which limits how far the workers decode ahead.
    size_t m_readyBytes = 0;
    bool m_isStopped = false;
    std::vector<std::thread> m_workers;
};

} // namespace corvanta::parquet
