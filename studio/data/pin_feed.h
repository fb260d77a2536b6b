// Passes the rows of a pin from the thread that reads them to the GUI thread, no more of them than
// are wanted.
//
// The reading thread waits in take() when it has passed the wanted rows: the run is paused, and
// continues when more are wanted. Rows that are not kept are still counted in the summaries.
#pragma once
#include "studio/data/column_summary.h"
#include "studio/data/row_chunk.h"

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <stop_token>

namespace corvanta::studio {

/// What has been read of a pin.
struct PinRows
{
    TableSchema columns;
    std::vector<RowChunkPtr> chunks; ///< the rows in their order
    qint64 rows = 0;                 ///< in the chunks
    qsizetype bytes = 0;             ///< of the chunks
    qint64 rowsRead = 0;             ///< rows that the summaries count, at least `rows`
    QVector<ColumnSummary> summaries;
    qint64 cutCells = 0;     ///< longer than RowChunk::kMaxCellUnits
    bool isComplete = false; ///< `rowsRead` is the number of rows of the table
};

class PinFeed
{
public:
    /// Start with no rows. `skip` rows are not kept, because the receiver has them.
    PinFeed(qint64 skip, qint64 wanted, qsizetype maxBytes);

    // Threads: the one that reads.

    /// Take a row, or null for the end of the table. Returns false after a stop. Waits while the
    /// wanted rows are there and no stop is requested.
    bool take(const TableSchema &columns, const OneRow *row, const std::stop_token &stop);
    /// Pass on what has not been passed on. Call it after the last take(), also after a failure.
    void flush();

    // Threads: the GUI thread.

    /// Let the reading continue until the table has `rows` rows.
    void want(qint64 rows);
    /// Let it continue to the end of the table; no more rows than wanted so far are kept.
    void wantSummaries();
    /// Add what has arrived since the last call to `rows`. Returns false if there is nothing new.
    bool collect(PinRows *rows);
    /// Whether the reader waits until more is wanted.
    bool isPaused() const;

private:
    using Clock = std::chrono::steady_clock;

    bool isEnough() const
    {
        return (m_rowsRead >= m_wanted || m_bytesLeft <= 0) && !m_wantsSummaries;
    }
    bool isDue(const OneRow *row) const;
    void keep(const OneRow &row);

    // Of the reading thread.
    qint64 m_skip;
    qsizetype m_bytesLeft;
    qint64 m_rowsRead = 0;
    bool m_isComplete = false;
    std::unique_ptr<RowChunk> m_open;          // null: there is none
    std::unique_ptr<SummaryBuilder> m_builder; // null: before the first row
    qint64 m_cutCells = 0;
    Clock::time_point m_published = Clock::now();

    // Changed with m_mutex held, and read without it for each row.
    std::atomic<qint64> m_wanted;
    std::atomic<bool> m_wantsSummaries = false;

    mutable std::mutex m_mutex;
    std::condition_variable_any m_changed;
    // Guarded by m_mutex.
    bool m_isPaused = false;
    bool m_isNew = false;
    PinRows m_news; // with the chunks since the last collect()
};

} // namespace corvanta::studio
