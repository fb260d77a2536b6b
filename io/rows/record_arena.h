// Records, each a key and a row, one after the other in one block of memory that grows.
//
// Offsets in the block are small and stay valid when it grows, so that sorting and hashing use them
// in place of addresses. Their order is that of the records.
#pragma once
#include <QtGlobal>

#include <cstdlib>
#include <memory>
#include <string_view>

namespace corvanta::rows {

/// A key and the row that it belongs to; views into the memory of the record.
struct Record
{
    /// Before the key: the sizes of both.
    static constexpr size_t kHeaderBytes = 8;

    std::string_view key;
    std::string_view row;
    /// The record with its header, for copying it.
    std::string_view bytes() const
    {
        return {key.data() - kHeaderBytes, kHeaderBytes + key.size() + row.size()};
    }
};

/// The record at `bytes`, which an arena has written.
Record recordAt(const char *bytes);

/// Write a record by room() and commit(), or not at all. Threads: one at a time.
class RecordArena
{
public:
    /// Room for a key and a row of this many bytes in total, the row after the key. Valid until the
    /// next call. Throws std::bad_alloc if there is no memory, and for more than 2 GiB.
    char *room(qsizetype bytes);
    /// Keep the record that was written to the room; returns its offset.
    qsizetype commit(qsizetype keyBytes, qsizetype rowBytes);
    /// The record at an offset that commit() returned. Valid until the next room().
    Record at(qsizetype offset) const { return recordAt(m_bytes.get() + offset); }
    /// Bytes of all records.
    qsizetype size() const { return m_size; }
    /// Forget all records and keep the memory.
    void clear() { m_size = 0; }

private:
    struct Free
    {
        void operator()(char *bytes) const { std::free(bytes); }
    };
    void grow(qsizetype needed);

    std::unique_ptr<char, Free> m_bytes;
    qsizetype m_size = 0;
    qsizetype m_capacity = 0;
};

} // namespace corvanta::rows
