// codecs/parquet/decode_ahead.h
// Decodes the columns of a file on worker threads, ahead of the one who takes the rows.
#pragma once
#include "codecs/parquet/read/column_reader.h"

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace corvanta::parquet {

/// Hands out the blocks of each column in order. What is decoded ahead is bounded in blocks per
/// column and in bytes over all; whoever waits for a block that nobody has begun decodes it itself.
/// Threads: one takes blocks; stop() may be called from any.
class DecodeAhead
{
public:
    /// `workers` may be 0: then everything is decoded when it is taken.
    DecodeAhead(std::vector<std::unique_ptr<ColumnReader>> columns, int workers);
    ~DecodeAhead();
    DecodeAhead(const DecodeAhead &) = delete;
    DecodeAhead &operator=(const DecodeAhead &) = delete;

    /// Replace `block` by the next one of the column; false at its end. The old block is used
    /// again.
    Result<bool, Error> take(size_t column, std::unique_ptr<CellBlock> &block);

    /// End the workers soon. take() then answers false.
    void stop();

private:
    using Answer = Result<bool, Error>;
    struct Lane
    {
        std::unique_ptr<ColumnReader> reader; // used by whoever set isBusy
        std::deque<std::unique_ptr<CellBlock>> ready;
        std::vector<std::unique_ptr<CellBlock>> spare;
        std::optional<Answer> end; // the column's end, or why it cannot go on
        bool isBusy = false;
    };
    void work();
    bool canDecode(const Lane &lane) const;
    Lane *chooseLane();
    void decode(Lane &lane, std::unique_lock<std::mutex> &lock);

    std::mutex m_mutex; // guards everything below but the readers
    std::condition_variable m_changed;
    std::vector<Lane> m_lanes;
    size_t m_next = 0; // where the search for work begins
    size_t m_readyBytes = 0;
    bool m_isStopped = false;
    std::vector<std::thread> m_workers;
};

} // namespace corvanta::parquet
