// Collects the writes to a file on a network drive in blocks of 5 MiB.
#pragma once
#include "base/byte_sink.h"

#include <deque>
#include <memory>

namespace corvanta {

/// Keeps all bytes since the last flush in memory. Neither small writes nor the seeks back by which
/// an encoder completes its headers reach the network. The region in memory starts where the last
/// flush ended. Threads: one thread at a time per object.
class BlockBufferedSink final : public ByteSink
{
public:
    /// Size of a block, and of each write to the target.
    static constexpr qint64 kBlockBytes = 5'242'880;

    /// `target` must outlive the sink. The region starts at the target's position.
    explicit BlockBufferedSink(ByteSink &target);

    /// Returns false if there is not enough memory for another block; then nothing is written.
    bool write(const void *bytes, qint64 n) override;
    /// Accepts every offset inside the region. Returns false for offsets before its start and after
    /// the end of its allocated blocks.
    bool seek(qint64 offset) override;
    qint64 position() const override { return m_position; }
    /// Write the region to the target and start a new one at the current position. After a failure
    /// the unwritten bytes are kept, and the call may be repeated. The destructor does not flush.
    bool flush() override;

private:
    using Block = std::unique_ptr<char[]>;

    // Offsets are in the target. allocateUntil() returns false if there is not enough memory.
    bool allocateUntil(qint64 end);
    qint64 allocatedEnd() const;

    ByteSink &m_target;
    std::deque<Block> m_blocks;
    // Offsets in the target. m_regionStart is that of the first block, m_regionEnd the end of the
    // written bytes. m_position is between them, except after a seek past the written bytes.
    qint64 m_regionStart;
    qint64 m_regionEnd;
    qint64 m_position;
};

} // namespace corvanta
