// host/src/engine/row_batch.h
// Rows between two actions: an immutable block of cells, shared by everybody who reads it.
#pragma once
#include "corvanta/meta_info.h"
#include "corvanta/row_buffer.h"

#include <memory>
#include <mutex>
#include <vector>

namespace corvanta {

inline constexpr int kBatchArenaBytes = 256 * 1024;

/// Filled by one producer, then constant.
struct RowBatch
{
    std::shared_ptr<const TableSchema> schema;
    RowBuffer arena{kBatchArenaBytes};
    std::vector<const uchar *> cells; // row by row
    int columns = 0;
    int rows = 0;

    qint64 bytes() const
    {
        return arena.bytesUsed() + static_cast<qint64>(cells.size() * sizeof(const uchar *));
    }
    const uchar *const *row(int i) const
    {
        return cells.data() + static_cast<size_t>(i) * static_cast<size_t>(columns);
    }
};

/// Some rows of a batch, on their way to a pin.
struct BatchSlice
{
    std::shared_ptr<const RowBatch> batch;
    int first = 0;
    int count = 0;

    qint64 bytes() const { return batch->rows == 0 ? 0 : batch->bytes() * count / batch->rows; }
};

/// Batches that are used again: their memory has been touched before, which saves page faults.
/// Threads: any.
class BatchPool : public std::enable_shared_from_this<BatchPool>
{
public:
    std::shared_ptr<RowBatch> take();

private:
    void giveBack(RowBatch *batch);

    static constexpr size_t kKept = 8;
    std::mutex m_mutex;
    std::vector<std::unique_ptr<RowBatch>> m_free; // guarded by m_mutex
};

} // namespace corvanta
