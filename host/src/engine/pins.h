// The pins of one action. Threads: the action's, except rowCount().
//
//     OutputPin --BatchSlice--> InputGate of each reader --BatchSlice--> InputPin
//
// An output pin pushes into the gates of its readers and waits there when a queue is full. An input
// pin takes from its action's own gate. Nothing else is shared between the threads of two actions.
#pragma once
#include "corvanta/one_row.h"
#include "engine/input_gate.h"
#include "engine/row_batch.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <vector>

namespace corvanta {

/// Options that all pins of a run share; see RunOptions.
struct PinOptions
{
    int batchRows = 1024; ///< maximum number of rows in a batch
    /// Set to 1 whenever a batch is taken or sent, unless null.
    /// Tests use it to make every action yield as often as possible.
    std::atomic<char> *yieldAtBatches = nullptr;
};

/// Collects rows into batches and sends them to the gates of the readers. Without readers rows are
/// only counted. Sending blocks while a reader's queue is full, see InputGate.
class OutputPin
{
public:
    /// Make input pin `pin` of `gate` read this pin. Call before the run.
    void addReader(InputGate *gate, int pin) { m_readers.push_back({gate, pin}); }
    /// False if the rows need not be made. Constant during the run.
    bool isRead() const { return !m_readers.empty(); }
    /// Call before the run.
    void setOptions(const PinOptions &options) { m_options = options; }
    /// Become complete after `rows` rows, and request a yield then. The action may still send rows
    /// until it yields; its run function is not called again. Call before the run.
    void setLimit(qint64 rows, std::atomic<char> *yieldRequest)
    {
        m_rowsLeft = rows;
        m_yieldRequest = yieldRequest;
    }
    /// True if the row limit is reached. Always false without a limit.
    bool isComplete() const { return m_yieldRequest != nullptr && m_rowsLeft <= 0; }
    /// Whether there are readers and none of them reads any more.
    bool isAbandoned() const;
    /// Request a yield when a batch is sent and the pin is abandoned. Call before the first row.
    void setYieldWhenAbandoned(std::atomic<char> *request) { m_yieldWhenAbandoned = request; }

    /// The row to fill next; always the same object.
    OneRow *row() { return &m_row; }
    /// The arena for its cells, that of the open batch. It changes when a batch is sent, so ask for
    /// it again after each row.
    RowBuffer *buffer() { return &openBatch().arena; }
    /// Append the filled row to the open batch, and send the batch if it is full.
    void rowReady();
    /// Send the open batch, although it is not full. The row that is being filled keeps its cells.
    void flush();
    /// Send the open batch and the end of the data, with the columns. Call once, as the last.
    void end();
    /// Rows sent so far. Threads: any.
    qint64 rowCount() const { return m_count.load(std::memory_order_relaxed); }

private:
    /// An input pin of another action.
    struct Reader
    {
        InputGate *gate;
        int pin;
    };
    /// The batch that is being filled; takes one from the pool if there is none.
    RowBatch &openBatch();
    // rowReady() calls one of these, for a row that was filled here, for a view of a row of an
    // input batch, and for a row that no action reads.
    void appendOwn();
    void appendView();
    void appendPicked();
    void dropRow();
    /// Move the cells of the row that is being filled out of a batch that is sent.
    void copyCellsOfOpenRow();
    /// Push into the gate of every reader; may block.
    void send(const BatchSlice &slice);

    // Without a lock: constant during the run.
    std::vector<Reader> m_readers;
    PinOptions m_options;
    OneRow m_row;
    // Shared with the batches, which may exist longer than the pin.
    std::shared_ptr<BatchPool> m_pool = std::make_shared<BatchPool>();
    std::shared_ptr<RowBatch> m_open;            // null: no row since the last batch was sent
    BatchSlice m_slice;                          // rows of an input batch, sent unchanged
    int m_dropped = 0;                           // rows that no action reads, not yet counted
    qint64 m_rowsLeft = 0;                       // until the limit
    std::atomic<char> *m_yieldRequest = nullptr; // null: there is no limit
    std::atomic<char> *m_yieldWhenAbandoned = nullptr;
    std::atomic<qint64> m_count = 0;
};

/// Takes batches from a gate and iterates over their rows. Only one batch is held at a time; it
/// returns to its producer when the next one is taken.
class InputPin
{
public:
    /// Read pin `pin` of `gate`, which must outlive this object. Call before the run.
    void connect(InputGate *gate, int pin, const PinOptions &options)
    {
        m_gate = gate;
        m_pin = pin;
        m_options = options;
    }

    /// The next row of the current batch, or null after its last row. The row is a view, valid
    /// until the next call. Inline, because it is called for every row.
    const OneRow *nextInBatch()
    {
        if (m_at == m_end) {
            return nullptr;
        }
        m_row.m_cells = m_row.m_batch->row(m_at);
        m_row.m_rowInBatch = m_at++;
        return &m_row;
    }
    /// Wait for the next batch. Returns false at the end of the data, and when the run has ended.
    bool fetch();
    /// A row with the columns of the table. Call after the first row or the end; before that it has
    /// no columns. Valid until the next fetch().
    const OneRow *columns();
    /// Rows taken so far. Threads: any.
    qint64 rowCount() const { return m_count.load(std::memory_order_relaxed); }

private:
    InputGate *m_gate = nullptr;
    int m_pin = 0;
    PinOptions m_options;
    OneRow m_row;
    int m_at = 0;  // the next row in the batch of m_row
    int m_end = 0; // after the last row of the slice
    std::atomic<qint64> m_count = 0;
};

/// All pins of one action. Pin numbers must exist; ActionItem checks those of input pins.
class Ports
{
public:
    /// Pins are numbered from 0.
    /// Makes the pins; Run::Private connects the output pins to the gates of their readers.
    Ports(int pinsIn, int pinsOut, const PinOptions &options);

    /// The next row of an input pin, or null at the end. Flushes the output pins before it takes
    /// the next batch, because it may wait for that.
    const OneRow *nextRow(int pin);
    // Send the open batches of all output pins; end() also sends the end of the data.
    void flush();
    void end();
    // The parts, for connecting the pins before a run and for progress displays during it.
    InputPin &in(int pin) { return m_in[static_cast<size_t>(pin)]; }
    OutputPin &out(int pin) { return m_out[static_cast<size_t>(pin)]; }
    InputGate &gate() { return m_gate; }
    int pinsIn() const { return static_cast<int>(m_in.size()); }
    int pinsOut() const { return static_cast<int>(m_out.size()); }
    /// End the action when none of its readers reads any more, and set `yieldRequest` then. Null:
    /// never, for an action that does more than send rows. Call before the first row.
    void endWithReaders(std::atomic<char> *yieldRequest);
    /// True if no more rows are needed: an output pin has reached its row limit, even if other pins
    /// are read, or the action ended with its readers.
    bool isComplete() const;

private:
    bool isAbandoned() const;

    InputGate m_gate;
    bool m_endsWithReaders = false;
    std::vector<InputPin> m_in;
    std::vector<OutputPin> m_out;
};

} // namespace corvanta
