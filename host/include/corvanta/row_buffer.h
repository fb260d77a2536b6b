// A byte arena for the cells of output rows, and the functions that make cells in it.
#pragma once
#include "base/cell.h"
#include "corvanta/export.h"

#include <QString>

#include <cstdlib>
#include <memory>
#include <vector>

/// Grows by blocks; allocations stay valid until reset(). Threads: one at a time.
///
/// An odd number of bytes starts at an odd address. The size of a text cell is odd exactly if that
/// of its length code is, so its UTF-16 units are always 2-byte aligned.
class CORVANTA_EXPORT RowBuffer
{
public:
    /// `capacity` is the size of a block in bytes. The first block is allocated on demand.
    explicit RowBuffer(int capacity);
    ~RowBuffer();
    RowBuffer(const RowBuffer &) = delete;
    RowBuffer &operator=(const RowBuffer &) = delete;

    /// Room for `n` bytes. Throws std::bad_alloc if there is no memory.
    unsigned char *alloc(int n)
    {
        const int gap = (n ^ static_cast<int>(reinterpret_cast<quintptr>(m_next))) & 1;
        if (m_next == nullptr || n > m_end - m_next - gap) {
            return allocSlow(n);
        }
        uchar *const at = m_next + gap;
        m_next = at + n;
        return at;
    }

    /// Discard all cells; keep the blocks for the next ones.
    void reset();
    /// Discard all cells and free the blocks beyond `keepBytes` bytes.
    void deepReset(long long keepBytes);
    /// Size of all blocks in bytes.
    long long totalSizeAllocated() const;

    /// Return the last `n` bytes of the last allocation.
    void shrinkLast(int n) { m_next -= n; }
    /// True if `bytes` point into the current block. A cheap test that misses older blocks.
    bool isRecent(const unsigned char *bytes) const { return bytes >= m_begin && bytes < m_next; }
    /// Bytes allocated since the last reset.
    long long bytesUsed() const { return m_usedBefore + (m_next - m_begin); }

private:
    struct Free
    {
        void operator()(uchar *p) const { std::free(p); }
    };
    struct Block
    {
        std::unique_ptr<uchar, Free> bytes;
        long long size = 0;
    };
    unsigned char *allocSlow(int n);
    void use(size_t block);

    std::vector<Block> m_blocks;
    size_t m_block = 0;         // index of the current block
    long long m_capacity;       // bytes of a usual block
    long long m_usedBefore = 0; // bytes in the blocks before the current one
    // The current block: its first byte, the next free one, and the one after its last. All are
    // null until the first allocation.
    uchar *m_begin = nullptr;
    uchar *m_next = nullptr;
    uchar *m_end = nullptr;
};

/// A text cell that holds `text`; a null string gives a missing cell.
CORVANTA_EXPORT unsigned char *bytesFromQString(RowBuffer *buffer, const QString &text);
/// The same in the caller's memory, which must have room for textCellBytes(text.size()) bytes.
/// Returns the address after the cell.
CORVANTA_EXPORT unsigned char *bytesFromQString(unsigned char *bytes, const QString &text);
/// The text of a text cell; a null string for a missing cell.
CORVANTA_EXPORT QString qStringFromBytes(const unsigned char *bytes);

namespace corvanta {

// Each function makes a cell in `buffer` and returns its first byte, for OneRow::setCol(). The cell
// is valid until the buffer is reset. They throw std::bad_alloc if there is no memory.

/// A text cell that holds `n` UTF-16 units, at most limits::kTextCellUnits. An empty text is not a
/// missing cell.
inline const uchar *textCell(RowBuffer *buffer, const char16_t *units, qsizetype n)
{
    const quint32 code = cell::codeOfText(n);
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const bytes = buffer->alloc(static_cast<int>(lengthBytes + n * 2));
    std::memcpy(cell::putLength(bytes, code, lengthBytes), units, static_cast<size_t>(n) * 2);
    return bytes;
}

/// A text cell that holds `n` bytes of UTF-8, at most limits::kTextCellUnits.
CORVANTA_EXPORT const uchar *textCellFromUtf8(RowBuffer *buffer, const char *utf8, qsizetype n);

/// A key cell; `value` may be a missing marker.
inline const uchar *keyCell(RowBuffer *buffer, quint32 value)
{
    uchar *const bytes = buffer->alloc(cell::kKeyBytes);
    storeNative(value, bytes);
    return bytes;
}

/// A double cell.
inline const uchar *doubleCell(RowBuffer *buffer, double value)
{
    uchar *const bytes = buffer->alloc(cell::kDoubleBytes);
    storeNative(value, bytes);
    return bytes;
}

} // namespace corvanta
