// The pool of batches of one output pin. A batch may return from any thread, and also after its pin
// has been destroyed: the deleter keeps the pool alive.
#include "engine/row_batch.h"

namespace corvanta {

std::shared_ptr<RowBatch> BatchPool::take()
{
    std::unique_ptr<RowBatch> batch;
    {
        const std::lock_guard lock(m_mutex);
        if (!m_free.empty()) {
            batch = std::move(m_free.back());
            m_free.pop_back();
        }
    }
    if (!batch) {
        batch = std::make_unique<RowBatch>();
    }
    // Any thread may release the last reference, so the deleter owns the pool, not a pointer to it.
    return {batch.release(), [pool = shared_from_this()](RowBatch *used) { pool->giveBack(used); }};
}

void BatchPool::giveBack(RowBatch *batch)
{
    std::unique_ptr<RowBatch> owned(batch);
    owned->arena.deepReset(kKeptArenaBytes);
    owned->cells.clear();
    owned->schema.reset();
    owned->source.reset();
    owned->rows = 0;
    // A reader that is far behind makes many batches; keep only as many as a full queue needs.
    // Within the reserved capacity, because a deleter must not throw.
    const std::lock_guard lock(m_mutex);
    if (m_free.size() < kKept) {
        m_free.push_back(std::move(owned));
    }
}

} // namespace corvanta
