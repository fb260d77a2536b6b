// The input of one action: a bounded queue per pin, filled by producers and emptied by the action.
// The bound keeps the memory of a run independent of the size of its tables.
#pragma once
#include "engine/row_batch.h"
#include "engine/spill_file.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace corvanta {

/// Threads: producers call push() and end(), the action calls pop(), any thread calls close().
///
/// A full queue blocks its producer. There is one exception, which prevents a deadlock when a table
/// fans out and joins again: while the action waits on another of its pins, the producer may
/// continue, because the other pin may depend on it (see boundAlways()). Excess rows are kept in
/// memory up to a limit and then in a temporary file.
class InputGate
{
public:
    /// A gate with `pins` input pins, numbered from 0.
    explicit InputGate(int pins);

    /// Until release() the action does not read: producers never wait, and excess rows are kept as
    /// below. Call before the first push().
    void hold();
    void release();
    /// Never exceed the bound of a queue while the action waits on another pin, because no producer
    /// depends on that. Call before the first push().
    void boundAlways() { m_isBoundAlways = true; }
    /// Append rows; waits while the queue is full. A closed gate discards them. Throws
    /// std::runtime_error if rows must go to a temporary file that cannot be written.
    void push(int pin, BatchSlice slice);
    /// End the data of a pin; `schema` gives the columns of a table without rows.
    void end(int pin, std::shared_ptr<const TableSchema> schema);
    /// The next rows; waits for them. Returns nothing at the end of the data or when the gate is
    /// closed.
    std::optional<BatchSlice> pop(int pin);
    /// The columns passed to end(); null before.
    /// close() keeps them.
    std::shared_ptr<const TableSchema> endSchema(int pin) const;
    /// Discard all rows and release all waiting threads: the action reads no more. May be called
    /// several times; a gate is never opened again.
    void close();
    /// Whether close() was called. Threads: any.
    bool isClosed() const { return m_closed.load(std::memory_order_relaxed); }

private:
    /// The rows of one pin: first those in `slices`, then those in `spill`.
    struct Queue
    {
        std::deque<BatchSlice> slices;
        qint64 bytes = 0;
        SpillFile spill; // rows after those in `slices`
        std::shared_ptr<const TableSchema> schema;
        bool ended = false;
    };
    bool mayPush(const Queue &queue, int pin) const;
    qint64 queueBytes() const;

    // A few batches: enough that producer and consumer rarely wait for each other, and little
    // enough for the cache and for graphs of many actions.
    static constexpr qint64 kQueueBytes = qint64(2) << 20;
    // The same for all pins of an action, if it has many.
    static constexpr qint64 kAllQueuesBytes = qint64(16) << 20;
    // Rows in memory of a pin whose producer may exceed kQueueBytes; later rows go to the file.
    static constexpr qint64 kOverflowBytes = qint64(32) << 20;

    mutable std::mutex m_mutex;
    std::condition_variable m_filled;   // for the action: rows, an end or close()
    std::condition_variable m_emptied;  // for producers: room, a waiting action or close()
    std::vector<Queue> m_queues;        // guarded by m_mutex, as all below
    int m_waitingPin = -1;              // the pin that pop() waits on; -1: it does not wait
    bool m_isBoundAlways = false;       // constant during the run
    bool m_held = false;                // between hold() and release()
    std::atomic<bool> m_closed = false; // never reset; written with m_mutex held
};

} // namespace corvanta
