// Builds batches from filled rows, and iterates over the rows of batches.
//
// An output pin has either an open batch (rows made here, or rows picked from one input batch) or
// an open slice (consecutive rows of an input batch that are sent unchanged), never both: a change
// between the two sends the first, so that rows keep their order.
#include "engine/pins.h"

#include "base/cell.h"

namespace corvanta {

namespace {

/// A copy of a cell in `arena`.
const uchar *copyCell(RowBuffer &arena, cell::Type type, const uchar *cell)
{
    const qsizetype n = cell::bytesOf(type, cell);
    uchar *const copy = arena.alloc(static_cast<int>(n));
    std::memcpy(copy, cell, static_cast<size_t>(n));
    return copy;
}

} // namespace

RowBatch &OutputPin::openBatch()
{
    if (!m_open) {
        m_open = m_pool->take();
    }
    return *m_open;
}

void OutputPin::rowReady()
{
    if (!isRead()) {
        dropRow();
    } else if (m_row.m_view) {
        appendView();
    } else {
        appendOwn();
    }
    // The request is for all actions, but only this one is not called again (Ports::isComplete).
    if (m_yieldRequest != nullptr && --m_rowsLeft <= 0) {
        *m_yieldRequest = 1;
    }
}

/// Counts a row that no action reads. flush() publishes the count and frees the cells, once per
/// batch and not for every row.
void OutputPin::dropRow()
{
    // The bound of bytes is that of a batch: a few large rows take as much memory as many small
    // ones.
    if (++m_dropped == m_options.batchRows ||
        (m_open && m_open->arena.bytesUsed() >= kBatchArenaBytes)) {
        flush();
    }
    if (!m_row.m_view) {
        m_row.clearCells();
    }
}

/// Appends a row of an input batch to the open slice, or to the rows picked from that batch.
void OutputPin::appendView()
{
    const bool isPicking = m_open && m_open->source && m_open->source == m_row.m_batch;
    const bool follows =
        m_slice.batch == m_row.m_batch && m_slice.first + m_slice.count == m_row.m_rowInBatch;
    if (isPicking || (!follows && m_slice.batch && m_slice.batch == m_row.m_batch)) {
        appendPicked();
    } else if (follows) {
        ++m_slice.count;
    } else {
        flush();
        m_slice = {m_row.m_batch, m_row.m_rowInBatch, 1};
    }
    // All cells of the output row are missing again. Its batch is kept for the next copyFrom().
    m_row.m_view = false;
    m_row.m_cells = m_row.m_own.data();
    // Nothing can follow the last row of a batch.
    if (m_row.m_rowInBatch + 1 == m_row.m_batch->rows) {
        flush();
    }
}

/// Appends a row of an input batch that does not follow the one before. A batch of pointers to the
/// cells costs less than a slice per row, each of which wakes the reader.
void OutputPin::appendPicked()
{
    const BatchSlice slice = std::exchange(m_slice, {});
    RowBatch &batch = openBatch();
    const auto pick = [&batch](const uchar *const *cells, int rows) {
        batch.cells.insert(batch.cells.end(), cells, cells + qsizetype(rows) * batch.columns);
        batch.rows += rows;
    };
    if (slice.count != 0) {
        batch.source = slice.batch;
        batch.schema = slice.batch->schema;
        batch.columns = slice.batch->columns;
        pick(slice.batch->row(slice.first), slice.count);
    }
    pick(m_row.m_cells, 1);
    if (batch.rows >= m_options.batchRows) {
        flush();
    }
}

/// Appends a row that was filled here to the open batch.
void OutputPin::appendOwn()
{
    RowBatch &batch = openBatch();
    // A batch has one schema, and a slice is sent before newer rows.
    const bool isOther = batch.source || batch.schema != m_row.m_schema;
    if (m_slice.count != 0 || (batch.rows != 0 && isOther)) {
        flush();
        appendOwn();
        return;
    }
    if (batch.rows == 0) {
        batch.schema = m_row.m_schema;
        batch.columns = m_row.numberOfColumns();
    }
    const MetaInfo *const types = batch.schema->types.constData();
    const uchar **const cells = m_row.m_own.data();
    for (int i = 0; i < batch.columns; ++i) {
        const uchar *&cell = cells[i];
        // A cell in the current block of the arena is already in the batch. isRecent() misses cells
        // in older blocks, which are copied once more; that is correct and rare.
        if (cell == nullptr) {
            cell = m_row.missingCell(i);
        } else if (!batch.arena.isRecent(cell)) {
            cell = copyCell(batch.arena, types[i].cellType(), cell);
        }
    }
    batch.cells.insert(batch.cells.end(), cells, cells + batch.columns);
    std::fill_n(cells, batch.columns, nullptr);
    if (++batch.rows == m_options.batchRows || batch.arena.bytesUsed() >= kBatchArenaBytes) {
        flush();
    }
}

void OutputPin::flush()
{
    if (m_dropped != 0) {
        m_count.fetch_add(m_dropped, std::memory_order_relaxed);
        m_dropped = 0;
        // Cells may have been made in the arena of a row that no action reads.
        if (m_open) {
            m_open->arena.deepReset(kKeptArenaBytes);
        }
    }
    if (m_slice.count != 0) {
        send(std::exchange(m_slice, {}));
    }
    if (m_open && m_open->rows != 0) {
        const std::shared_ptr<RowBatch> full = std::exchange(m_open, nullptr);
        // Before the batch is sent: a reader may release it, and its memory is then reused.
        copyCellsOfOpenRow();
        send({full, 0, full->rows});
    }
}

void OutputPin::copyCellsOfOpenRow()
{
    // Cells of the unfinished row may be in the arena of the batch that is sent.
    for (int i = 0; i < m_row.numberOfColumns() && !m_row.m_view; ++i) {
        const uchar *&cell = m_row.m_own[static_cast<size_t>(i)];
        if (cell != nullptr) {
            cell = copyCell(openBatch().arena, m_row.getMetaType(i).cellType(), cell);
        }
    }
}

/// Sends rows to all readers; they share the batch.
void OutputPin::send(const BatchSlice &slice)
{
    m_count.fetch_add(slice.count, std::memory_order_relaxed);
    for (const Reader &reader : m_readers) {
        reader.gate->push(reader.pin, slice);
    }
    if (m_options.yieldAtBatches != nullptr) {
        *m_options.yieldAtBatches = 1;
    }
    if (m_yieldWhenAbandoned != nullptr && isAbandoned()) {
        *m_yieldWhenAbandoned = 1;
    }
}

bool OutputPin::isAbandoned() const
{
    return isRead() && std::all_of(m_readers.begin(), m_readers.end(),
                                   [](const Reader &reader) { return reader.gate->isClosed(); });
}

void OutputPin::end()
{
    // A row that was not finished is not sent; its cells may be gone with the action's memory.
    m_row.clearCells();
    flush();
    for (const Reader &reader : m_readers) {
        reader.gate->end(reader.pin, m_row.m_schema);
    }
}

bool InputPin::fetch()
{
    if (m_options.yieldAtBatches != nullptr) {
        *m_options.yieldAtBatches = 1;
    }
    std::optional<BatchSlice> slice = m_gate->pop(m_pin);
    if (!slice) {
        return false;
    }
    m_count.fetch_add(slice->count, std::memory_order_relaxed);
    m_at = slice->first;
    m_end = slice->first + slice->count;
    m_row.m_schema = slice->batch->schema;
    m_row.m_batch = std::move(slice->batch);
    m_row.m_view = true;
    return true;
}

const OneRow *InputPin::columns()
{
    // A table without rows has no batch; its schema arrives with the end of the data. Before that
    // the row has no columns.
    if (!m_row.m_batch) {
        if (auto schema = m_gate->endSchema(m_pin)) {
            m_row.m_schema = std::move(schema);
        }
    }
    return &m_row;
}

Ports::Ports(int pinsIn, int pinsOut, const PinOptions &options)
    : m_gate(pinsIn)
    , m_in(static_cast<size_t>(pinsIn))
    , m_out(static_cast<size_t>(pinsOut))
{
    for (int i = 0; i < pinsIn; ++i) {
        in(i).connect(&m_gate, i, options);
    }
    for (OutputPin &pin : m_out) {
        pin.setOptions(options);
    }
}

const OneRow *Ports::nextRow(int pin)
{
    if (const OneRow *row = in(pin).nextInBatch()) {
        return row;
    }
    // Send partial batches before waiting, so that a slow source does not delay finished rows.
    flush();
    // Not before the first row of the pin: without the columns the action may fail.
    const bool isEnd = in(pin).rowCount() != 0 && isAbandoned();
    return !isEnd && in(pin).fetch() ? in(pin).nextInBatch() : nullptr;
}

void Ports::endWithReaders(std::atomic<char> *yieldRequest)
{
    m_endsWithReaders = yieldRequest != nullptr;
    for (OutputPin &pin : m_out) {
        pin.setYieldWhenAbandoned(yieldRequest);
    }
}

bool Ports::isComplete() const
{
    return isAbandoned() || std::any_of(m_out.begin(), m_out.end(),
                                        [](const OutputPin &pin) { return pin.isComplete(); });
}

/// Pins that nothing reads do not count.
bool Ports::isAbandoned() const
{
    const auto isDone = [](const OutputPin &pin) { return !pin.isRead() || pin.isAbandoned(); };
    return m_endsWithReaders && std::all_of(m_out.begin(), m_out.end(), isDone) &&
           std::any_of(m_out.begin(), m_out.end(),
                       [](const OutputPin &pin) { return pin.isRead(); });
}

void Ports::flush()
{
    for (OutputPin &output : m_out) {
        output.flush();
    }
}

void Ports::end()
{
    for (OutputPin &output : m_out) {
        output.end();
    }
}

} // namespace corvanta
