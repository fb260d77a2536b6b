// host/src/engine/spill_file.h
// Rows that wait for too long to stay in memory: first in, first out, in a temporary file.
#pragma once
#include "engine/row_batch.h"

#include <QTemporaryFile>

#include <deque>
#include <memory>
#include <optional>

namespace corvanta {

/// Threads: one at a time. put() throws std::runtime_error when the file cannot be written, take()
/// when it cannot be read back.
class SpillFile
{
public:
    bool hasRows() const { return !m_entries.empty(); }
    void put(const BatchSlice &slice);
    /// The oldest rows; nothing when there are none.
    std::optional<BatchSlice> take();
    void clear();

private:
    struct Entry
    {
        std::shared_ptr<const TableSchema> schema;
        int rows = 0;
        qint64 bytes = 0;
    };
    std::unique_ptr<QTemporaryFile> m_file;
    std::deque<Entry> m_entries;
    qint64 m_readAt = 0;
    qint64 m_writeAt = 0;
};

} // namespace corvanta
