// The queues between producers and one action.
//
// One mutex guards all pins of the action, because whether a producer may push depends on the pin
// that the action waits on. m_filled wakes the action, m_emptied the producers.
//
// Why a queue may exceed its bound: a table fans out to A and B, both lead to C, and C reads all of
// A first. B's queue at C fills up, the source blocks on it, A gets no more rows, and C waits for A
// forever. So while C waits on A's pin, pushes to all its other pins are allowed. The same happens
// if A writes a file and waits until B has read the old one. In a graph without such circles the
// bound always holds.
#include "engine/input_gate.h"

#include <algorithm>

namespace corvanta {

InputGate::InputGate(int pins)
    : m_queues(static_cast<size_t>(pins))
{
}

/// The bound of one queue.
qint64 InputGate::queueBytes() const
{
    return std::min(kQueueBytes, kAllQueuesBytes / static_cast<qint64>(m_queues.size()));
}

/// Whether a producer may append to `queue`. At least two slices are always allowed, so that a
/// large batch does not stop the flow. While rows come back from the file, only the exception above
/// lets the file grow.
bool InputGate::mayPush(const Queue &queue, int pin) const
{
    const bool hasRoom =
        !queue.spill.hasRows() && (queue.bytes < queueBytes() || queue.slices.size() < 2);
    const bool isOtherAwaited = m_waitingPin >= 0 && m_waitingPin != pin && !m_isBoundAlways;
    return m_closed || hasRoom || m_held || isOtherAwaited;
}

void InputGate::hold()
{
    const std::lock_guard lock(m_mutex);
    m_held = true;
}

void InputGate::release()
{
    const std::lock_guard lock(m_mutex);
    m_held = false; // producers that find a full queue wait from now on
}

void InputGate::push(int pin, BatchSlice slice)
{
    std::unique_lock lock(m_mutex);
    Queue &queue = m_queues[static_cast<size_t>(pin)];
    m_emptied.wait(lock, [&] { return mayPush(queue, pin); });
    if (m_closed) {
        return;
    }
    // Rows must keep their order: once some are in the file, all later ones follow them. The file
    // is written with the mutex held, which keeps this order too; it happens only after 32 MiB.
    if (queue.spill.hasRows() || queue.bytes >= kOverflowBytes) {
        queue.spill.put(slice);
        return;
    }
    queue.bytes += slice.bytes();
    queue.slices.push_back(std::move(slice));
    // The action waits on one pin at a time; a notification for another pin would wake it in vain.
    if (m_waitingPin == pin) {
        m_filled.notify_one();
    }
}

void InputGate::end(int pin, std::shared_ptr<const TableSchema> schema)
{
    const std::lock_guard lock(m_mutex);
    Queue &queue = m_queues[static_cast<size_t>(pin)];
    queue.ended = true;
    queue.schema = std::move(schema);
    m_filled.notify_one(); // in vain when it waits on another pin, but an end comes once
}

std::optional<BatchSlice> InputGate::pop(int pin)
{
    std::unique_lock lock(m_mutex);
    Queue &queue = m_queues[static_cast<size_t>(pin)];
    const auto ready = [&] {
        return m_closed || !queue.slices.empty() || queue.spill.hasRows() || queue.ended;
    };
    if (!ready()) {
        m_waitingPin = pin;
        m_emptied.notify_all(); // producers of the other pins may continue now
        m_filled.wait(lock, ready);
        m_waitingPin = -1;
    }
    if (m_closed) {
        return std::nullopt;
    }
    // The file holds the rows after those in memory. At the end of the data it is empty, and take()
    // returns nothing.
    if (queue.slices.empty()) {
        std::optional<BatchSlice> slice = queue.spill.take();
        if (!queue.spill.hasRows()) {
            m_emptied.notify_all();
        }
        return slice;
    }
    BatchSlice slice = std::move(queue.slices.front());
    queue.slices.pop_front();
    queue.bytes -= slice.bytes();
    m_emptied.notify_all();
    return slice;
}

std::shared_ptr<const TableSchema> InputGate::endSchema(int pin) const
{
    const std::lock_guard lock(m_mutex);
    return m_queues[static_cast<size_t>(pin)].schema;
}

void InputGate::close()
{
    const std::lock_guard lock(m_mutex);
    m_closed = true;
    // Free the rows now: the gate exists until the run is destroyed. Schemas are kept, because the
    // action may ask for its columns in close().
    for (Queue &queue : m_queues) {
        queue.slices.clear();
        queue.bytes = 0;
        queue.spill.clear();
    }
    m_filled.notify_all();
    m_emptied.notify_all();
}

} // namespace corvanta
