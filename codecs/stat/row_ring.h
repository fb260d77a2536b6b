// The ring buffer between the thread that parses a data set and the one that consumes its rows.
//
// One block of memory, used in order and again from its beginning. Two counts coordinate the
// threads: the free bytes of the block, and the rows that are ready. Rows are handed over in
// batches, and their bytes come back in batches, so that a lock is taken per batch and not per row.
//
//   row    columns + 1 pointers (the next row of the batch or null, then the cells), then the
//          cells' bytes; a multiple of 8 bytes
//   batch  consecutive rows without a gap
//
// A row that does not fit before the end of the block starts at its beginning. The bytes that are
// skipped then count as used until the consumer has released the batch after them.
//
// Starts no thread. Threads: one producer, one consumer; stop() from any.
#pragma once
#include "base/cell.h"

#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>

namespace corvanta::stat {

/// For the rows of one file.
class RowRing
{
public:
    /// A block of `bytes` bytes, at least one and rounded up to a multiple of 8.
    explicit RowRing(qint64 bytes);

    // The producer. Functions that can wait return false, or null, after stop(), and if the row
    // exceeds the block: see tooLargeBytes().

    /// Start a row of `columns` cells, which are missing texts until they are set.
    bool beginRow(int columns);
    /// Room for `bytes` bytes of cells of the current row, at an even address. It may move the row,
    /// so call use() and setCell() for a cell before room() for the next one.
    uchar *room(qint64 bytes)
    {
        m_at += reinterpret_cast<quintptr>(m_at) & 1;
        return m_end - m_at >= bytes ? m_at : moreRoom(bytes);
    }
    /// Use the last room up to `end` (excluding).
    void use(uchar *end) { m_at = end; }
    /// Set cell `column` of the row: an address in the row, or of a cell that outlives the ring.
    void setCell(int column, const uchar *cell) { header()[1 + column] = cell; }
    /// Complete the row.
    void endRow();
    /// No more rows will come. The current one is discarded unless endRow() was called.
    void finish();
    /// The size of the row that exceeds the block, as far as it is known; 0: none does.
    qint64 tooLargeBytes() const { return m_tooLargeBytes; }

    // The consumer.

    /// The cells of the next row, or null at the end and after stop(). They are valid until the
    /// next call. Waits for the producer.
    const uchar *const *next();
    /// The end of the row that next() has returned. Its cells are between the pointers and here,
    /// except those that outlive the ring.
    const uchar *rowEnd() const
    {
        return m_next != nullptr ? reinterpret_cast<const uchar *>(m_next) : m_batchEnd;
    }

    /// End all waits, now and later.
    void stop();

private:
    using Cell = const uchar *;

    /// Rows that are handed over together.
    struct Batch
    {
        Cell *first = nullptr;
        uchar *end = nullptr;
        qint64 bytes = 0; // with those that were skipped before it
    };

    Cell *header() { return reinterpret_cast<Cell *>(m_row); }
    uchar *blockEnd() const { return m_block.get() + m_bytes; }
    uchar *moreRoom(qint64 bytes);
    // Take more of the block after the row, or after the row has moved to the start of the block.
    bool extend(qint64 bytes);
    bool moveToStart(qint64 rowBytes, qint64 bytes);
    void moveRow(qint64 rowBytes);
    bool waitForFree(std::unique_lock<std::mutex> &lock, qint64 bytes);
    void publish();
    void nextBatch();

    const qint64 m_bytes;
    const std::unique_ptr<uchar[]> m_block;
    // Of the producer.
    uchar *m_row;           // the current row, or where the next one begins
    uchar *m_at;            // next byte of the row
    uchar *m_end;           // end of the bytes after m_row that the producer has taken
    int m_columns = 0;      // of the current row
    Cell *m_last = nullptr; // last complete row of m_open
    Batch m_open;           // complete rows, not handed over yet
    qint64 m_tooLargeBytes = 0;
    // Of the consumer.
    Cell *m_next = nullptr;            // row of the current batch; null: none is left
    const uchar *m_batchEnd = nullptr; // of the current batch
    qint64 m_batchBytes = 0;           // of the current batch

    std::mutex m_mutex;
    std::condition_variable m_roomAvailable;
    std::condition_variable m_rowsAvailable;
    qint64 m_freeBytes;          // guarded by m_mutex
    std::deque<Batch> m_batches; // guarded by m_mutex: the rows that are ready
    bool m_isFinished = false;   // guarded by m_mutex
    bool m_isStopped = false;    // guarded by m_mutex
};

} // namespace corvanta::stat
