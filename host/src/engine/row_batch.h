// Rows between two actions: an immutable block of cells, shared by all its readers.
//
// A batch with 3 rows of 2 columns: cells = {r0c0, r0c1, r1c0, r1c1, r2c0, r2c1}, each a pointer
// into the arena or to a constant missing cell.
#pragma once
#include "corvanta/meta_info.h"
#include "corvanta/row_buffer.h"

#include <memory>
#include <mutex>
#include <vector>

namespace corvanta {

/// Bytes of cells after which a batch is sent. Also the size of an arena's block, so that a
/// usual batch has one block.
inline constexpr int kBatchArenaBytes = 256 * 1024;
/// Bytes that an arena keeps for the next rows. More were added by a few large cells.
inline constexpr qint64 kKeptArenaBytes = 4LL * kBatchArenaBytes;

/// Filled by the thread of one output pin; constant and shared between threads once it is sent.
struct RowBatch
{
    /// Two consecutive batches of a pin share it unless the columns have changed.
    std::shared_ptr<const TableSchema> schema;
    RowBuffer arena{kBatchArenaBytes};
    std::vector<const uchar *> cells; // row by row, never null
    /// Of a batch of rows that were picked from another one: that batch, which has the cells.
    std::shared_ptr<const RowBatch> source;
    int columns = 0; // valid once there is a row
    int rows = 0;

    /// Memory that the batch takes, roughly: cells and their pointers, without the schema.
    qint64 bytes() const
    {
        return arena.bytesUsed() + static_cast<qint64>(cells.size() * sizeof(const uchar *)) +
               (source ? source->bytes() : 0);
    }
    /// The cells of row `i`, from 0; one per column.
    const uchar *const *row(int i) const
    {
        return cells.data() + static_cast<size_t>(i) * static_cast<size_t>(columns);
    }
};

/// Consecutive rows of a batch: what a gate queues. Keeps the batch alive.
struct BatchSlice
{
    std::shared_ptr<const RowBatch> batch;
    int first = 0;
    int count = 0;

    /// Memory that the slice keeps alive.
    qint64 bytes() const { return batch->bytes(); }
};

/// Keeps batches for reuse: their memory has been touched before, which saves page faults.
/// Threads: any.
class BatchPool : public std::enable_shared_from_this<BatchPool>
{
public:
    BatchPool() { m_free.reserve(kKept); }
    /// An empty batch, which returns to the pool when its last reference is released. Throws
    /// std::bad_alloc if there is no memory.
    std::shared_ptr<RowBatch> take();

private:
    /// Called by the deleter of a batch, on the thread that releases it last.
    void giveBack(RowBatch *batch);

    static constexpr size_t kKept = 8; // batches
    std::mutex m_mutex;
    std::vector<std::unique_ptr<RowBatch>> m_free; // guarded by m_mutex
};

} // namespace corvanta
