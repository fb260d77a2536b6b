// The block of the ring while the producer fills a row:
//
//   | live batches | m_open: whole rows | m_row: row ... m_at | taken | free ... | live batches |
//                                                                   m_end
//
// Every size is a multiple of 8, so m_row is always aligned for the pointers of its header.
#include "codecs/stat/row_ring.h"

#include <algorithm>
#include <cstring>

namespace corvanta::stat {

namespace {

constexpr qint64 kAlign = alignof(const uchar *);
/// Bytes that the producer takes in one step, and after which it hands over its rows: small against
/// the block, so that both threads work at the same time, and large against the cost of a lock.
constexpr qint64 kStepBytes = qint64(64) * 1024;
constexpr qint64 kStepsPerBlock = 8;

constexpr qint64 aligned(qint64 bytes)
{
    return (bytes + kAlign - 1) / kAlign * kAlign;
}

} // namespace

RowRing::RowRing(qint64 bytes)
    : m_bytes(aligned(std::max<qint64>(bytes, 1)))
    , m_block(new uchar[static_cast<size_t>(m_bytes)]) // not initialised: pages are used on demand
    , m_row(m_block.get())
    , m_at(m_row)
    , m_end(m_row)
    , m_freeBytes(m_bytes)
{
}

// ---- The producer.

bool RowRing::beginRow(int columns)
{
    m_columns = columns;
    m_at = m_row;
    const qint64 headerBytes = (columns + 1LL) * static_cast<qint64>(sizeof(Cell));
    if (room(headerBytes) == nullptr) {
        return false;
    }
    m_at += headerBytes;
    header()[0] = nullptr;
    std::fill_n(header() + 1, columns, cell::missingTextCell());
    return true;
}

/// Called when the bytes that were taken do not suffice.
uchar *RowRing::moreRoom(qint64 bytes)
{
    const qint64 rowBytes = m_at - m_row;
    if (rowBytes + bytes > m_bytes) {
        m_tooLargeBytes = rowBytes + bytes;
        return nullptr;
    }
    const bool hasRoom = blockEnd() - m_at >= bytes ? extend(bytes) : moveToStart(rowBytes, bytes);
    return hasRoom ? m_at : nullptr;
}

/// Take the bytes after m_end.
bool RowRing::extend(qint64 bytes)
{
    const qint64 needed = aligned(bytes - (m_end - m_at));
    std::unique_lock lock(m_mutex);
    if (!waitForFree(lock, needed)) {
        return false;
    }
    const qint64 step = std::min(
        {std::max(needed, kStepBytes), m_freeBytes, static_cast<qint64>(blockEnd() - m_end)});
    m_freeBytes -= step;
    m_end += step;
    return true;
}

/// Continue the row at the start of the block.
bool RowRing::moveToStart(qint64 rowBytes, qint64 bytes)
{
    const qint64 taken = m_end - m_row;
    const qint64 skipped = blockEnd() - m_row;
    const qint64 rowRoom = aligned(rowBytes + bytes);
    std::unique_lock lock(m_mutex);
    // The rows before are another batch: a batch has no gap. It also holds bytes to wait for.
    publish();
    const qint64 needed = skipped - taken + rowRoom;
    if (needed <= m_bytes - taken) {
        if (!waitForFree(lock, needed)) {
            return false;
        }
        m_freeBytes -= needed;
        m_open.bytes += skipped;
    } else {
        // A large row: it overlaps its own beginning, and nothing else may be in the block.
        if (!waitForFree(lock, m_bytes - taken - m_open.bytes)) {
            return false;
        }
        m_freeBytes = m_bytes - rowRoom;
        m_open.bytes = 0;
    }
    moveRow(rowBytes);
    m_end = m_block.get() + rowRoom;
    return true;
}

/// Copy the row to the start of the block; the cells that are in it move with it.
void RowRing::moveRow(qint64 rowBytes)
{
    uchar *const from = m_row;
    uchar *const to = m_block.get();
    std::memmove(to, from, static_cast<size_t>(rowBytes));
    m_row = to;
    m_at = to + rowBytes;
    if (rowBytes == 0) { // the header does not exist yet
        return;
    }
    for (int i = 1; i <= m_columns; ++i) {
        Cell &cell = header()[i];
        if (cell >= from && cell < from + rowBytes) {
            cell = to + (cell - from);
        }
    }
}

/// Wait until `bytes` bytes are free. The consumer may need the complete rows for that.
bool RowRing::waitForFree(std::unique_lock<std::mutex> &lock, qint64 bytes)
{
    if (m_freeBytes < bytes) {
        publish();
    }
    // Bytes that were skipped before the row come back when nothing else is in the block.
    const qint64 skipped = m_last == nullptr ? m_open.bytes : 0;
    const qint64 others = m_bytes - (m_end - m_row) - skipped;
    m_roomAvailable.wait(lock, [&] {
        return m_freeBytes >= bytes || (skipped > 0 && m_freeBytes == others) || m_isStopped;
    });
    if (m_freeBytes < bytes) {
        m_freeBytes += skipped;
        m_open.bytes -= skipped;
    }
    return !m_isStopped;
}

void RowRing::endRow()
{
    m_at = m_row + aligned(m_at - m_row);
    if (m_last == nullptr) {
        m_open.first = header();
    } else {
        *m_last = m_row;
    }
    m_last = header();
    m_open.bytes += m_at - m_row;
    m_row = m_at;
    m_open.end = m_at;
    if (m_open.bytes >= std::min(kStepBytes, m_bytes / kStepsPerBlock)) {
        const std::lock_guard lock(m_mutex);
        publish();
    }
}

/// Hand over the complete rows. The mutex is held.
void RowRing::publish()
{
    if (m_last == nullptr) {
        return;
    }
    m_batches.push_back(m_open);
    m_open = {};
    m_last = nullptr;
    m_rowsAvailable.notify_one();
}

void RowRing::finish()
{
    const std::lock_guard lock(m_mutex);
    publish();
    m_isFinished = true;
    m_rowsAvailable.notify_one();
}

// ---- The consumer.

const uchar *const *RowRing::next()
{
    if (m_next == nullptr) {
        nextBatch();
    }
    const Cell *const row = m_next;
    if (row == nullptr) {
        return nullptr;
    }
    // The link is stored like the address of a cell.
    m_next = reinterpret_cast<Cell *>(const_cast<uchar *>(*row));
    return row + 1;
}

/// Release the batch whose rows were consumed, and wait for the next one.
void RowRing::nextBatch()
{
    std::unique_lock lock(m_mutex);
    m_freeBytes += m_batchBytes;
    m_batchBytes = 0;
    m_roomAvailable.notify_one();
    m_rowsAvailable.wait(lock, [&] { return !m_batches.empty() || m_isFinished || m_isStopped; });
    if (m_batches.empty() || m_isStopped) {
        return;
    }
    m_next = m_batches.front().first;
    m_batchEnd = m_batches.front().end;
    m_batchBytes = m_batches.front().bytes;
    m_batches.pop_front();
}

void RowRing::stop()
{
    const std::lock_guard lock(m_mutex);
    m_isStopped = true;
    m_roomAvailable.notify_all();
    m_rowsAvailable.notify_all();
}

} // namespace corvanta::stat
