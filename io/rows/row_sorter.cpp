// A run is a spool of records in order of their keys. The rows that are still in memory at the end
// are one more run, the last.
#include "io/rows/row_sorter.h"

#include "base/bytes.h"

#include <algorithm>
#include <array>
#include <compare>
#include <cstring>

namespace corvanta::rows {

namespace {

// More runs are merged into one first, which bounds the open files and the memory for blocks.
constexpr size_t kMaxRuns = 256;
constexpr size_t kPrefixBytes = 12;

} // namespace

/// A source of rows in order of their keys.
struct RowSorter::Run
{
    size_t index = 0;                   // earlier runs have the earlier rows
    std::unique_ptr<RecordSpool> spool; // null: the rows in memory
    Record current;
    Entry entry{};
};

RowSorter::RowSorter(Options options)
    : m_options(std::move(options))
{
}

RowSorter::~RowSorter() = default;

QString RowSorter::folder() const
{
    return BlockSpool(spoolOptions()).folder();
}

BlockSpool::Options RowSorter::spoolOptions() const
{
    return {.memoryBytes = 0, .retryWrite = m_options.retryWrite};
}

/// Shorter keys are filled with zeros: no key is the beginning of another, so that two different
/// keys differ before the fill.
RowSorter::Entry RowSorter::entryOf(std::string_view key, qsizetype offset)
{
    std::array<char, kPrefixBytes> prefix{};
    std::memcpy(prefix.data(), key.data(), std::min(key.size(), kPrefixBytes));
    return {loadBE<quint64>(prefix.data()), loadBE<quint32>(prefix.data() + sizeof(quint64)),
            static_cast<quint32>(offset)};
}

std::strong_ordering RowSorter::compare(const Entry &a, std::string_view keyA, const Entry &b,
                                        std::string_view keyB)
{
    if (a.high != b.high) {
        return a.high <=> b.high;
    }
    if (a.low != b.low) {
        return a.low <=> b.low;
    }
    const size_t start = std::min({kPrefixBytes, keyA.size(), keyB.size()});
    return keyA.substr(start) <=> keyB.substr(start);
}

/// Ties are ordered by the place of the rows, so that the order is stable.
void RowSorter::sortEntries()
{
    std::sort(m_entries.begin(), m_entries.end(), [this](const Entry &a, const Entry &b) {
        if (a.high != b.high) {
            return a.high < b.high;
        }
        const auto order = a.low != b.low
                               ? a.low <=> b.low
                               : compare(a, m_arena.at(a.offset).key, b, m_arena.at(b.offset).key);
        return std::is_eq(order) ? a.offset < b.offset : std::is_lt(order);
    });
}

Result<void, SpoolError> RowSorter::commit(qsizetype keyBytes, qsizetype rowBytes)
{
    const qsizetype offset = m_arena.commit(keyBytes, rowBytes);
    m_entries.push_back(entryOf(m_arena.at(offset).key, offset));
    const auto used = m_arena.size() + static_cast<qint64>(m_entries.size() * sizeof(Entry));
    return used < m_options.memoryBytes ? Result<void, SpoolError>() : writeRun();
}

/// Writes the rows in memory to a new run.
Result<void, SpoolError> RowSorter::writeRun()
{
    if (m_runs.size() == kMaxRuns) {
        if (auto merged = mergeRuns(); !merged) {
            return merged;
        }
    }
    sortEntries();
    m_written = std::make_unique<RecordSpool>(spoolOptions());
    for (const Entry &entry : m_entries) {
        if (auto put = putRecord(m_arena.at(entry.offset)); !put) {
            return put;
        }
    }
    m_entries.clear();
    m_arena.clear();
    return endRun();
}

Result<void, SpoolError> RowSorter::putRecord(const Record &record)
{
    auto put = m_written->put(record.bytes());
    m_error = put ? m_error : m_written->error();
    return put;
}

/// The run that is being written becomes the last one.
Result<void, SpoolError> RowSorter::endRun()
{
    auto ended = m_written->rewind();
    m_error = ended ? m_error : m_written->error();
    m_runs.push_back(std::make_unique<Run>(Run{m_runs.size(), std::move(m_written), {}, {}}));
    return ended;
}

/// Merges all runs into one. The rows in memory are later ones and stay there.
Result<void, SpoolError> RowSorter::mergeRuns()
{
    if (auto started = startMerge(); !started) {
        return started;
    }
    m_written = std::make_unique<RecordSpool>(spoolOptions());
    for (;;) {
        const auto record = nextRecord();
        if (!record) {
            return record.fault();
        }
        if (!*record) {
            break;
        }
        if (auto put = putRecord(**record); !put) {
            return put;
        }
        if (m_options.isRunning && !m_options.isRunning()) {
            return Fault{SpoolError::CannotWrite};
        }
    }
    m_runs.clear();
    return endRun();
}

/// The rows in memory need no file: they are sorted where they are.
Result<void, SpoolError> RowSorter::finish()
{
    sortEntries();
    m_runs.push_back(std::make_unique<Run>(Run{m_runs.size(), nullptr, {}, {}}));
    return startMerge();
}

/// Reads the first record of every run.
Result<void, SpoolError> RowSorter::startMerge()
{
    m_heap.clear();
    m_isTopTaken = false;
    for (const auto &run : m_runs) {
        const auto hasRow = advance(*run);
        if (!hasRow) {
            return hasRow.fault();
        }
        if (*hasRow) {
            m_heap.push_back(run.get());
        }
    }
    std::make_heap(m_heap.begin(), m_heap.end(),
                   [](const Run *a, const Run *b) { return isBefore(*b, *a); });
    return {};
}

bool RowSorter::isBefore(const Run &a, const Run &b)
{
    const auto order = compare(a.entry, a.current.key, b.entry, b.current.key);
    return std::is_eq(order) ? a.index < b.index : std::is_lt(order);
}

/// Moves to the next record of the run. Returns false at its end.
Result<bool, SpoolError> RowSorter::advance(Run &run)
{
    if (!run.spool) {
        if (m_nextEntry == m_entries.size()) {
            return false;
        }
        const Entry &entry = m_entries[m_nextEntry++];
        run.current = m_arena.at(entry.offset);
        run.entry = entry;
        return true;
    }
    const auto record = run.spool->next();
    if (!record) {
        m_error = run.spool->error();
        return record.fault();
    }
    if (*record) {
        run.current = **record;
        run.entry = entryOf(run.current.key, 0);
    }
    return record->has_value();
}

/// Moves the first run of the heap to its place: its current record has changed.
void RowSorter::siftDown()
{
    for (size_t at = 0;;) {
        size_t child = 2 * at + 1;
        if (child >= m_heap.size()) {
            return;
        }
        child += child + 1 < m_heap.size() && isBefore(*m_heap[child + 1], *m_heap[child]) ? 1 : 0;
        if (!isBefore(*m_heap[child], *m_heap[at])) {
            return;
        }
        std::swap(m_heap[at], m_heap[child]);
        at = child;
    }
}

/// The run of the last record moves only now, because its views were in use until this call.
Result<std::optional<Record>, SpoolError> RowSorter::nextRecord()
{
    if (m_isTopTaken) {
        const auto hasRow = advance(*m_heap.front());
        if (!hasRow) {
            return hasRow.fault();
        }
        if (!*hasRow) {
            m_heap.front() = m_heap.back();
            m_heap.pop_back();
        }
        siftDown();
    }
    m_isTopTaken = !m_heap.empty();
    return m_isTopTaken ? std::optional(m_heap.front()->current) : std::nullopt;
}

Result<std::optional<std::string_view>, SpoolError> RowSorter::next()
{
    const auto record = nextRecord();
    if (!record) {
        return record.fault();
    }
    return *record ? std::optional((*record)->row) : std::nullopt;
}

} // namespace corvanta::rows
