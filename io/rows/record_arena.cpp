// A record: quint32 bytes of the key, quint32 bytes of the row, key, row.
#include "io/rows/record_arena.h"

#include "base/bytes.h"

#include <algorithm>
#include <new>

namespace corvanta::rows {

namespace {

constexpr qsizetype kRecordBytes = Record::kHeaderBytes;
constexpr qsizetype kFirstCapacity = qsizetype(64) << 10;
// The sizes in the header are of 32 bits.
constexpr qsizetype kMaxRecordBytes = qsizetype(2) << 30;

} // namespace

Record recordAt(const char *bytes)
{
    const auto keyBytes = loadNative<quint32>(bytes);
    const auto rowBytes = loadNative<quint32>(bytes + sizeof keyBytes);
    const char *const key = bytes + kRecordBytes;
    return {{key, keyBytes}, {key + keyBytes, rowBytes}};
}

char *RecordArena::room(qsizetype bytes)
{
    if (bytes > kMaxRecordBytes) {
        throw std::bad_alloc();
    }
    const qsizetype needed = m_size + kRecordBytes + bytes;
    if (needed > m_capacity) {
        grow(needed);
    }
    return m_bytes.get() + m_size + kRecordBytes;
}

/// Doubles the memory. For large blocks the system moves pages and copies nothing.
void RecordArena::grow(qsizetype needed)
{
    const qsizetype capacity = std::max({needed, m_capacity * 2, kFirstCapacity});
    void *const bytes = std::realloc(m_bytes.get(), static_cast<size_t>(capacity));
    if (bytes == nullptr) {
        throw std::bad_alloc();
    }
    static_cast<void>(m_bytes.release()); // realloc() has freed it
    m_bytes.reset(static_cast<char *>(bytes));
    m_capacity = capacity;
}

/// The key and the row are in place; this completes the header before them.
qsizetype RecordArena::commit(qsizetype keyBytes, qsizetype rowBytes)
{
    const qsizetype offset = m_size;
    storeNative(static_cast<quint32>(keyBytes), m_bytes.get() + offset);
    storeNative(static_cast<quint32>(rowBytes), m_bytes.get() + offset + sizeof(quint32));
    m_size += kRecordBytes + keyBytes + rowBytes;
    return offset;
}

} // namespace corvanta::rows
