// host/src/engine/input_gate.h
// The input side of one action: a bounded queue per pin, filled by producers, emptied by the
// action.
#pragma once
#include "engine/row_batch.h"
#include "engine/spill_file.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace corvanta {

/// Threads: push() and end() by the producers, pop() by the action, close() by anybody.
///
/// A full queue blocks its producer, except while the action waits for another of its pins: then
/// the producer may be the one who has to go on before that other pin gets rows (a table that is
/// fanned out and joined again), and what does not fit is kept in memory up to a limit and beyond
/// it in a file.
class InputGate
{
public:
    explicit InputGate(int pins);

    /// Hand over rows; waits while the queue is full. Dropped when the gate is closed.
    void push(int pin, BatchSlice slice);
    /// No more rows; `schema` tells the columns of a table that had none.
    void end(int pin, std::shared_ptr<const TableSchema> schema);
    /// The next rows, or nothing at the end of the data or when the gate is closed.
    std::optional<BatchSlice> pop(int pin);
    /// The columns that end() told; null before.
    std::shared_ptr<const TableSchema> endSchema(int pin) const;
    /// Nobody reads any more: wake and release everybody.
    void close();

private:
    struct Queue
    {
        std::deque<BatchSlice> slices;
        qint64 bytes = 0;
        SpillFile spill; // rows behind those in `slices`
        std::shared_ptr<const TableSchema> schema;
        bool ended = false;
    };
    bool mayPush(const Queue &queue, int pin) const;

    static constexpr qint64 kQueueBytes = qint64(2) << 20;
    static constexpr qint64 kOverflowBytes = qint64(32) << 20;

    mutable std::mutex m_mutex;
    std::condition_variable m_filled;
    std::condition_variable m_emptied;
    std::vector<Queue> m_queues; // guarded by m_mutex, as all below
    int m_waitingPin = -1;
    bool m_closed = false;
};

} // namespace corvanta
