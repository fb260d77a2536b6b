// A queue of rows in a temporary file, for rows that do not fit into memory.
//
// The file is created by the first put() and removed when the queue is empty, so that a run takes
// disk space only while it needs it.
#pragma once
#include "base/platform/files.h"
#include "engine/row_batch.h"

#include <deque>
#include <optional>

namespace corvanta {

/// First in, first out. put() throws std::runtime_error if the file cannot be written, take() if it
/// cannot be read back. Threads: one at a time.
class SpillFile
{
public:
    bool hasRows() const { return !m_entries.empty(); }
    /// Append the rows. Copies their cells, so the batch can be reused.
    void put(const BatchSlice &slice);
    /// Remove and return the oldest rows, as many as one put() added; nothing if there are none.
    std::optional<BatchSlice> take();
    /// Discard all rows and remove the file.
    void clear();

private:
    /// What the file does not hold about the rows of one put().
    struct Entry
    {
        std::shared_ptr<const TableSchema> schema;
        int rows = 0;
        qint64 bytes = 0; // in the file
    };
    platform::FileHandle m_file; // has no name: no run leaves it behind
    std::deque<Entry> m_entries; // not taken yet, the oldest first
    qint64 m_readAt = 0;         // offset of the first entry's cells
    qint64 m_writeAt = 0;        // end of the file
};

} // namespace corvanta
