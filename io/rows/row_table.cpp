// Chained hashing in three arrays: buckets, entries, and the records that the entries refer to. The
// hash is stored, so that most other keys of a bucket are skipped without a look at their records.
#include "io/rows/row_table.h"

#include <QHashFunctions>

#include <bit>

namespace corvanta::rows {

quint32 hashOf(std::string_view key)
{
    const size_t hash = qHashBits(key.data(), key.size(), 0);
    return static_cast<quint32>(hash ^ hash >> 32);
}

void RowTable::commit(qsizetype keyBytes, qsizetype rowBytes)
{
    const qsizetype offset = m_arena.commit(keyBytes, rowBytes);
    m_entries.push_back({hashOf(m_arena.at(offset).key), static_cast<quint32>(offset), kNone});
}

/// From the last row to the first, so that each bucket lists its rows in order.
void RowTable::index()
{
    m_buckets.assign(std::bit_ceil(2 * m_entries.size() + 1), kNone);
    for (size_t row = m_entries.size(); row-- > 0;) {
        int &first = m_buckets[bucketOf(m_entries[row].hash)];
        m_entries[row].next = std::exchange(first, static_cast<int>(row));
    }
}

int RowTable::find(std::string_view key) const
{
    const quint32 hash = hashOf(key);
    return match(m_buckets[bucketOf(hash)], hash, key);
}

int RowTable::findNext(int row) const
{
    const Entry &entry = m_entries[static_cast<size_t>(row)];
    return match(entry.next, entry.hash, at(row).key);
}

/// The first row with that key, from `row` on in its bucket.
int RowTable::match(int row, quint32 hash, std::string_view key) const
{
    while (row != kNone) {
        const Entry &entry = m_entries[static_cast<size_t>(row)];
        if (entry.hash == hash && at(row).key == key) {
            break;
        }
        row = entry.next;
    }
    return row;
}

qint64 RowTable::bytes() const
{
    constexpr qint64 kPerRow = sizeof(Entry) + 4 * sizeof(int); // at most four buckets per row
    return m_arena.size() + static_cast<qint64>(m_entries.size()) * kPerRow;
}

void RowTable::clear()
{
    m_arena.clear();
    m_entries.clear();
    m_buckets.clear();
}

} // namespace corvanta::rows
