// A queue of rows in a temporary file, for rows that do not fit into memory.
#pragma once
#include "engine/row_batch.h"

#include <QTemporaryFile>

#include <deque>
#include <memory>
#include <optional>

namespace corvanta {

/// First in, first out. put() throws std::runtime_error if the file cannot be written, take() if it
/// cannot be read back. Threads: one at a time.
class SpillFile
{
public:
    bool hasRows() const { return !m_entries.empty(); }
    void put(const BatchSlice &slice);
    /// Remove and return the oldest rows; nothing if there are none.
    std::optional<BatchSlice> take();
    /// Discard all rows and remove the file.
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
