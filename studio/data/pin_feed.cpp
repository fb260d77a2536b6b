// Who owns what: the reading thread fills m_open without a lock. A chunk that is passed on is
// constant, so that the table shows it while the next one is filled.
#include "studio/data/pin_feed.h"

#include "corvanta/one_row.h"

#include <utility>

namespace corvanta::studio {

namespace {

constexpr int kChunkRows = 512;
constexpr qsizetype kChunkBytes = 1 << 20;
// The first rows of a slow source are shown before its chunk is full.
constexpr std::chrono::milliseconds kPublishTime{50};
/// Reading the clock for each row would cost more than the row.
constexpr qint64 kRowsPerLook = 64;

} // namespace

PinFeed::PinFeed(qint64 skip, qint64 wanted, qsizetype maxBytes)
    : m_skip(skip)
    , m_bytesLeft(maxBytes)
    , m_wanted(wanted)
{
}

/// Called for each row, so that the usual row takes no lock.
bool PinFeed::take(const TableSchema &columns, const OneRow *row, const std::stop_token &stop)
{
    if (m_builder == nullptr) {
        m_builder = std::make_unique<SummaryBuilder>(columns);
        const std::lock_guard lock(m_mutex);
        m_news.columns = columns;
    }
    if (row != nullptr) {
        m_builder->add(*row);
        keep(*row);
        ++m_rowsRead;
    }
    m_isComplete = row == nullptr;
    if (isDue(row)) {
        flush();
    }
    if (row != nullptr && isEnough()) {
        std::unique_lock lock(m_mutex);
        m_isPaused = true;
        m_changed.wait(lock, stop, [this] { return !isEnough(); });
        m_isPaused = false;
    }
    return !stop.stop_requested();
}

/// Whether the GUI thread should get what there is: not for each row, which would cost more than
/// reading it, and not too late.
bool PinFeed::isDue(const OneRow *row) const
{
    const bool isFull =
        m_open != nullptr && (m_open->rows() >= kChunkRows || m_open->bytes() >= kChunkBytes);
    return row == nullptr || isFull || isEnough() ||
           (m_rowsRead % kRowsPerLook == 0 && Clock::now() - m_published > kPublishTime);
}

/// The memory that is counted is that of the vectors, which grow by doubling.
void PinFeed::keep(const OneRow &row)
{
    if (m_rowsRead < m_skip || m_rowsRead >= m_wanted || m_bytesLeft <= 0) {
        return;
    }
    if (m_open == nullptr) {
        m_open = std::make_unique<RowChunk>(row.numberOfColumns());
    }
    const qsizetype before = m_open->bytes();
    m_cutCells += m_open->add(row);
    m_bytesLeft -= m_open->bytes() - before;
}

/// The counts are computed before the lock, because a table may have thousands of columns.
void PinFeed::flush()
{
    QVector<ColumnSummary> summaries =
        m_builder == nullptr ? QVector<ColumnSummary>() : m_builder->summaries();
    const std::lock_guard lock(m_mutex);
    if (m_open != nullptr) {
        m_news.rows += m_open->rows();
        m_news.bytes += m_open->bytes();
        m_news.chunks.emplace_back(std::move(m_open));
    }
    m_news.rowsRead = m_rowsRead;
    m_news.isComplete = m_isComplete;
    m_news.cutCells = m_cutCells;
    m_news.summaries = std::move(summaries);
    m_isNew = true;
    m_published = Clock::now();
}

/// With the mutex, so that the change does not fall between the check of the reader and its wait.
void PinFeed::want(qint64 rows)
{
    const std::lock_guard lock(m_mutex);
    m_wanted = rows;
    m_changed.notify_all();
}

void PinFeed::wantSummaries()
{
    const std::lock_guard lock(m_mutex);
    m_wantsSummaries = true;
    m_changed.notify_all();
}

/// Only pointers to chunks are copied, so that the reader hardly waits.
bool PinFeed::collect(PinRows *rows)
{
    const std::lock_guard lock(m_mutex);
    if (!std::exchange(m_isNew, false)) {
        return false;
    }
    rows->columns = m_news.columns;
    rows->chunks.insert(rows->chunks.end(), m_news.chunks.begin(), m_news.chunks.end());
    rows->rows += std::exchange(m_news.rows, 0);
    rows->bytes += std::exchange(m_news.bytes, 0);
    m_news.chunks.clear();
    // A run that was started again has not caught up yet.
    if (m_news.rowsRead >= rows->rowsRead) {
        rows->rowsRead = m_news.rowsRead;
        rows->summaries = m_news.summaries;
        rows->isComplete = m_news.isComplete;
    }
    rows->cutCells = qMax(rows->cutCells, m_news.cutCells);
    return true;
}

bool PinFeed::isPaused() const
{
    const std::lock_guard lock(m_mutex);
    return m_isPaused;
}

} // namespace corvanta::studio
