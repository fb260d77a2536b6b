// A hash table of rows in memory, by key. Rows with equal keys keep their order.
#pragma once
#include "io/rows/record_arena.h"

#include <vector>

namespace corvanta::rows {

/// The hash of a key. Uses all bits, so that any part of them distributes keys evenly.
quint32 hashOf(std::string_view key);

/// Call room() and commit() for each row, then index(), then find(). Rows are numbered from 0 in
/// the order of commit(). Threads: any number of readers after index().
class RowTable
{
public:
    static constexpr int kNone = -1;

    /// See RecordArena::room().
    char *room(qsizetype bytes) { return m_arena.room(bytes); }
    /// Add the row that was written to the room.
    void commit(qsizetype keyBytes, qsizetype rowBytes);
    /// All rows are added.
    void index();
    /// The first row with that key, or kNone.
    int find(std::string_view key) const;
    /// The next row with the key of `row`, or kNone.
    int findNext(int row) const;
    /// Valid until the next call of room() or clear().
    Record at(int row) const { return m_arena.at(m_entries[static_cast<size_t>(row)].offset); }
    int size() const { return static_cast<int>(m_entries.size()); }
    /// Memory that the rows take, with that of index().
    qint64 bytes() const;
    /// Remove all rows; the table can be filled again.
    void clear();

private:
    struct Entry
    {
        quint32 hash;
        quint32 offset; // in m_arena
        int next;       // in the same bucket
    };
    size_t bucketOf(quint32 hash) const { return hash & (m_buckets.size() - 1); }
    int match(int row, quint32 hash, std::string_view key) const;

    RecordArena m_arena;
    std::vector<Entry> m_entries;
    std::vector<int> m_buckets; // the first row of each; a power of two
};

} // namespace corvanta::rows
