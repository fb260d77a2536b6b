// corvanta/row_buffer.h
// Byte arena for the cells of produced rows, and the free functions that turn text into cells.
#pragma once
#include "base/cell.h"
#include "corvanta/export.h"

#include <QString>

#include <cstdlib>
#include <memory>
#include <vector>

/// Grows by blocks; what it gave out stays valid until reset(). Threads: one at a time.
///
/// Room for an odd number of bytes starts at an odd address, so that the UTF-16 units of a text
/// cell (whose size is odd exactly when its length code is) are 2-byte aligned.
class CORVANTA_EXPORT RowBuffer
{
public:
    /// `capacity` is the size of the first block in bytes, allocated at the first use.
    explicit RowBuffer(int capacity);
    ~RowBuffer();
    RowBuffer(const RowBuffer &) = delete;
    RowBuffer &operator=(const RowBuffer &) = delete;

    /// Room for `n` bytes. Throws std::bad_alloc when there is no memory.
    unsigned char *alloc(int n)
    {
        uchar *const at = m_next + ((n ^ static_cast<int>(reinterpret_cast<quintptr>(m_next))) & 1);
        if (m_next == nullptr || n > m_end - at) {
            return allocSlow(n);
        }
        m_next = at + n;
        return at;
    }

    /// Forget all cells; the blocks are kept for the next ones.
    void reset();
    /// Forget all cells and free the blocks beyond `keepBytes` bytes.
    void deepReset(long long keepBytes);
    long long totalSizeAllocated() const;

    /// Give back the `n` bytes at the end of the last allocation.
    void shrinkLast(int n) { m_next -= n; }
    /// Whether `bytes` lie in the block that is being filled: a cheap test that may miss older
    /// blocks.
    bool isRecent(const unsigned char *bytes) const { return bytes >= m_begin && bytes < m_next; }
    /// Bytes given out since the last reset.
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
    size_t m_block = 0; // index of the block that is being filled
    long long m_capacity;
    long long m_usedBefore = 0;
    uchar *m_begin = nullptr;
    uchar *m_next = nullptr;
    uchar *m_end = nullptr;
};

/// A text cell that holds `text` (an empty text, not a missing one, when it is empty but not null;
/// a null string gives a missing cell).
CORVANTA_EXPORT unsigned char *bytesFromQString(RowBuffer *buffer, const QString &text);
/// The same into the caller's bytes, which must have room for textCellBytes(text.size()); returns
/// the place behind the cell.
CORVANTA_EXPORT unsigned char *bytesFromQString(unsigned char *bytes, const QString &text);
/// The text of a text cell; a null string for a missing cell.
CORVANTA_EXPORT QString qStringFromBytes(const unsigned char *bytes);

namespace corvanta {

/// A text cell from UTF-16 units.
inline const uchar *textCell(RowBuffer *buffer, const char16_t *units, qsizetype n)
{
    const quint32 code = cell::codeOfText(n);
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const bytes = buffer->alloc(static_cast<int>(lengthBytes + n * 2));
    std::memcpy(cell::putLength(bytes, code, lengthBytes), units, static_cast<size_t>(n) * 2);
    return bytes;
}

/// A text cell from UTF-8. `n` is at most kTextCellUnits.
CORVANTA_EXPORT const uchar *textCellFromUtf8(RowBuffer *buffer, const char *utf8, qsizetype n);

inline const uchar *keyCell(RowBuffer *buffer, quint32 value)
{
    uchar *const bytes = buffer->alloc(cell::kKeyBytes);
    storeNative(value, bytes);
    return bytes;
}

inline const uchar *doubleCell(RowBuffer *buffer, double value)
{
    uchar *const bytes = buffer->alloc(cell::kDoubleBytes);
    storeNative(value, bytes);
    return bytes;
}

} // namespace corvanta
