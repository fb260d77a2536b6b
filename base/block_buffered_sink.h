// io/package/block_buffered_sink.h
// Write a file on a network drive in blocks of 5 MiB.
#pragma once
#include "base/byte_sink.h"

#include <deque>
#include <memory>

namespace corvanta {

/// Keeps all that was written since the last flush in memory, so that neither small writes nor the
/// steps back by which a zip writer completes its headers reach the network. The region in memory
/// begins where the last flush ended. Threads: one at a time.
class BlockBufferedSink final : public ByteSink
{
public:
    static constexpr qint64 kBlockBytes = 5'242'880;

    /// `target` must outlive the sink.
    explicit BlockBufferedSink(ByteSink &target);

    /// False without memory for another block; nothing is taken then.
    bool write(const void *bytes, qint64 n) override;
    /// Any position inside the region; false before its start and past its allocated blocks.
    bool seek(qint64 offset) override;
    qint64 position() const override { return m_position; }
    /// Write the region to the target and begin a new one at the current position. After a failure
    /// what is not written stays, and the call may be repeated.
    bool flush() override;

private:
    using Block = std::unique_ptr<char[]>;

    bool provide(qint64 end);
    qint64 allocatedEnd() const;

    ByteSink &m_target;
    std::deque<Block> m_blocks;
    qint64 m_regionStart;
    qint64 m_regionEnd; // of what was written
    qint64 m_position;
};

} // namespace corvanta
