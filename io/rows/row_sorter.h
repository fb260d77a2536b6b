// Sorts rows by their keys in bounded memory (external merge sort).
//
// Rows are collected in memory. When they take more than the limit, they are sorted and written to
// a temporary file, a run. At the end the runs are merged. The files have no names, so that none
// remains, not even of a killed program. Rows with equal keys keep their order.
#pragma once
#include "io/rows/record_arena.h"
#include "io/rows/record_spool.h"

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace corvanta::rows {

/// Call room() and commit() for each row, then finish(), then next() until there is no further row.
/// A key must not be the beginning of another key (see KeyEncoder). Threads: one at a time.
class RowSorter
{
public:
    struct Options
    {
        /// Of the rows in memory with their keys and order. Merging needs up to 32 MiB more.
        qint64 memoryBytes = qint64(96) << 20;
        /// Of the temporary files: called after a failed write; true to retry.
        std::function<bool()> retryWrite = {};
        /// Returns false once the run has ended: merging of runs then fails without a reason.
        std::function<bool()> isRunning = {};
    };

    explicit RowSorter(Options options);
    ~RowSorter();

    /// Room for a key and a row of this many bytes in total, the row after the key. Valid until the
    /// next call. Throws std::bad_alloc if there is no memory.
    char *room(qsizetype bytes) { return m_arena.room(bytes); }
    /// Add the row that was written to the room. Errors: CannotWrite, CannotRead.
    Result<void, SpoolError> commit(qsizetype keyBytes, qsizetype rowBytes);
    /// All rows are added. Errors: CannotWrite, CannotRead.
    Result<void, SpoolError> finish();
    /// The next row in order, valid until the next call; nothing at the end. Errors: CannotRead.
    Result<std::optional<std::string_view>, SpoolError> next();

    /// Why the last call that failed did so.
    const SystemError &error() const { return m_error; }
    /// The folder of the temporary files.
    QString folder() const;

private:
    /// A row in memory: the first twelve bytes of its key, big-endian, and its place. Most
    /// comparisons need no more, and therefore do not read the row.
    struct Entry
    {
        quint64 high;
        quint32 low;
        quint32 offset; // in m_arena
    };
    struct Run;

    static Entry entryOf(std::string_view key, qsizetype offset);
    static std::strong_ordering compare(const Entry &a, std::string_view keyA, const Entry &b,
                                        std::string_view keyB);
    static bool isBefore(const Run &a, const Run &b);
    void sortEntries();
    BlockSpool::Options spoolOptions() const;
    Result<void, SpoolError> writeRun();
    Result<void, SpoolError> putRecord(const Record &record);
    Result<void, SpoolError> endRun();
    Result<void, SpoolError> mergeRuns();
    Result<void, SpoolError> startMerge();
    Result<std::optional<Record>, SpoolError> nextRecord();
    Result<bool, SpoolError> advance(Run &run);
    void siftDown();

    Options m_options;
    RecordArena m_arena;
    std::vector<Entry> m_entries;
    std::unique_ptr<RecordSpool> m_written; // the run that is being written
    std::vector<std::unique_ptr<Run>> m_runs;
    std::vector<Run *> m_heap; // the runs that have rows; the first one has the next row
    bool m_isTopTaken = false; // the row of the first one was returned
    size_t m_nextEntry = 0;    // of m_entries, during the merge
    SystemError m_error;
};

} // namespace corvanta::rows
