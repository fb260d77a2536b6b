// The pins of one action. Threads: the action's, except rowCount().
#pragma once
#include "corvanta/one_row.h"
#include "engine/input_gate.h"
#include "engine/row_batch.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace corvanta {

/// Options that all pins of a run share.
struct PinOptions
{
    int batchRows = 1024; ///< maximum number of rows in a batch
    /// Set to 1 whenever a batch is taken or sent, unless null.
    std::atomic<char> *yieldAtBatches = nullptr;
};

/// Collects rows into batches and sends them to the gates of the readers.
class OutputPin
{
public:
    /// Make input pin `pin` of `gate` read this pin. Call before the run.
    void addReader(InputGate *gate, int pin) { m_readers.push_back({gate, pin}); }
    bool isRead() const { return !m_readers.empty(); }
    /// Call before the run.
    void setOptions(const PinOptions &options) { m_options = options; }
    /// Become complete after `rows` rows, and request a yield then. Call before the run.
    void setLimit(qint64 rows, std::atomic<char> *yieldRequest)
    {
        m_rowsLeft = rows;
        m_yieldRequest = yieldRequest;
    }
    /// True if the row limit is reached.
    bool isComplete() const { return m_yieldRequest != nullptr && m_rowsLeft <= 0; }

    /// The row to fill next.
    OneRow *row() { return &m_row; }
    /// The arena for its cells.
    RowBuffer *buffer() { return &openBatch().arena; }
    /// Append the filled row to the open batch, and send the batch if it is full.
    void rowReady();
    /// Send the open batch.
    void flush();
    /// Send the open batch and the end of the data.
    void end();
    /// Rows sent so far. Threads: any.
    qint64 rowCount() const { return m_count.load(std::memory_order_relaxed); }

private:
    struct Reader
    {
        InputGate *gate;
        int pin;
    };
    RowBatch &openBatch();
    void appendOwn();
    void appendView();
    void dropRow();
    void copyCellsOfOpenRow();
    void send(BatchSlice slice);

    std::vector<Reader> m_readers; // constant during the run
    PinOptions m_options;
    OneRow m_row;
    std::shared_ptr<BatchPool> m_pool = std::make_shared<BatchPool>();
    std::shared_ptr<RowBatch> m_open;            // null: no row since the last batch was sent
    BatchSlice m_slice;                          // rows of an input batch, sent unchanged
    int m_dropped = 0;                           // rows that no action reads, not yet counted
    qint64 m_rowsLeft = 0;                       // until the limit
    std::atomic<char> *m_yieldRequest = nullptr; // null: there is no limit
    std::atomic<qint64> m_count = 0;
};

/// Takes batches from a gate and iterates over their rows.
class InputPin
{
public:
    /// Read pin `pin` of `gate`. Call before the run.
    void connect(InputGate *gate, int pin, const PinOptions &options)
    {
        m_gate = gate;
        m_pin = pin;
        m_options = options;
    }

    /// The next row of the current batch, or null after its last row.
    const OneRow *nextInBatch()
    {
        if (m_at == m_end) {
            return nullptr;
        }
        m_row.m_cells = m_row.m_batch->row(m_at);
        m_row.m_rowInBatch = m_at++;
        return &m_row;
    }
    /// Wait for the next batch. Returns false at the end of the data.
    bool fetch();
    /// A row with the columns of the table. Call after the first row or the end.
    const OneRow *columns();
    /// Rows taken so far. Threads: any.
    qint64 rowCount() const { return m_count.load(std::memory_order_relaxed); }

private:
    InputGate *m_gate = nullptr;
    int m_pin = 0;
    PinOptions m_options;
    OneRow m_row;
    int m_at = 0;
    int m_end = 0;
    std::atomic<qint64> m_count = 0;
};

/// All pins of one action.
class Ports
{
public:
    /// Pins are numbered from 0.
    Ports(int pinsIn, int pinsOut, const PinOptions &options);

    /// The next row of an input pin, or null at the end. Flushes the output pins before it waits.
    const OneRow *nextRow(int pin);
    InputPin &in(int pin) { return m_in[static_cast<size_t>(pin)]; }
    OutputPin &out(int pin) { return m_out[static_cast<size_t>(pin)]; }
    InputGate &gate() { return m_gate; }
    int pinsIn() const { return static_cast<int>(m_in.size()); }
    int pinsOut() const { return static_cast<int>(m_out.size()); }
    /// True if an output pin has reached its row limit.
    bool isComplete() const
    {
        return std::any_of(m_out.begin(), m_out.end(),
                           [](const OutputPin &pin) { return pin.isComplete(); });
    }

private:
    InputGate m_gate;
    std::vector<InputPin> m_in;
    std::vector<OutputPin> m_out;
};

} // namespace corvanta
