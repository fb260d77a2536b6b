// The arena for cells, and the conversion of texts to cells.
//
// Blocks are kept after reset() and reused in order. A block that is too small for an allocation is
// skipped until the next reset.
#include "corvanta/row_buffer.h"

#include "base/utf.h"

#include <algorithm>
#include <new>
#include <numeric>

namespace {
constexpr long long kSmallestBlock = 4096;
}

RowBuffer::RowBuffer(int capacity)
    : m_capacity(std::max<long long>(capacity, kSmallestBlock))
{
}

RowBuffer::~RowBuffer() = default;

/// Makes a block the current one.
void RowBuffer::use(size_t block)
{
    m_block = block;
    m_begin = m_blocks[block].bytes.get();
    m_next = m_begin;
    m_end = m_begin + m_blocks[block].size;
}

/// Allocates in the next block that is large enough, or in a new one.
unsigned char *RowBuffer::allocSlow(int n)
{
    if (n < 0) {
        throw std::bad_alloc();
    }
    const long long needed = static_cast<long long>(n) + 1; // one byte to place odd cells
    m_usedBefore += m_next - m_begin; // what is left of the current block stays unused
    size_t block = m_begin == nullptr ? 0 : m_block + 1;
    while (block < m_blocks.size() && m_blocks[block].size < needed) {
        ++block;
    }
    if (block == m_blocks.size()) {
        // A large cell gets a block of its own size; deepReset() frees such blocks later.
        const long long size = std::max(m_capacity, needed);
        auto *const bytes = static_cast<uchar *>(std::malloc(static_cast<size_t>(size)));
        if (bytes == nullptr) {
            throw std::bad_alloc();
        }
        m_blocks.push_back({std::unique_ptr<uchar, Free>(bytes), size});
    }
    use(block);
    uchar *const at = m_next + (n & 1); // blocks start at even addresses
    m_next = at + n;
    return at;
}

void RowBuffer::reset()
{
    m_usedBefore = 0;
    if (!m_blocks.empty()) {
        use(0);
    }
}

void RowBuffer::deepReset(long long keepBytes)
{
    long long kept = 0;
    size_t blocks = 0;
    while (blocks < m_blocks.size() && kept + m_blocks[blocks].size <= keepBytes) {
        kept += m_blocks[blocks++].size;
    }
    m_blocks.resize(blocks);
    m_begin = m_next = m_end = nullptr; // the current block may be gone
    reset();
}

long long RowBuffer::totalSizeAllocated() const
{
    return std::accumulate(m_blocks.begin(), m_blocks.end(), 0LL,
                           [](long long sum, const Block &block) { return sum + block.size; });
}

unsigned char *bytesFromQString(unsigned char *bytes, const QString &text)
{
    using namespace corvanta;
    // A length code of 0 is the missing cell; an empty text has a code of its own.
    if (text.isNull()) {
        return cell::putLength(bytes, 0, 1);
    }
    const quint32 code = cell::codeOfText(text.size());
    bytes = cell::putLength(bytes, code, cell::lengthBytes(code));
    std::memcpy(bytes, text.utf16(), static_cast<size_t>(text.size()) * 2);
    return bytes + text.size() * 2;
}

unsigned char *bytesFromQString(RowBuffer *buffer, const QString &text)
{
    const qsizetype n = text.isNull() ? 1 : corvanta::cell::textCellBytes(text.size());
    uchar *const bytes = buffer->alloc(static_cast<int>(n));
    bytesFromQString(bytes, text);
    return bytes;
}

QString qStringFromBytes(const unsigned char *bytes)
{
    const corvanta::cell::Text text = corvanta::cell::readText(bytes);
    if (text.isMissing()) {
        return {};
    }
    QString result(text.size(), Qt::Uninitialized);
    std::memcpy(result.data(), text.units, static_cast<size_t>(text.size()) * 2);
    return result;
}

namespace corvanta {

const uchar *textCellFromUtf8(RowBuffer *buffer, const char *utf8, qsizetype n)
{
    // The length code comes first, and its size depends on the number of units, which is at most
    // `n`. Allocate for `n` units and convert after the longest possible code.
    const int lengthBytes = cell::lengthBytes(cell::codeOfText(n));
    uchar *const bytes = buffer->alloc(static_cast<int>(lengthBytes + n * 2));
    auto *const units = reinterpret_cast<char16_t *>(bytes + lengthBytes);
    const qsizetype count = utf8ToUtf16(utf8, n, units);
    const quint32 code = cell::codeOfText(count);
    const int usedLengthBytes = cell::lengthBytes(code);
    buffer->shrinkLast(static_cast<int>((n - count) * 2));
    // A shorter code starts later, so that the units need not be moved.
    uchar *const begin = bytes + (lengthBytes - usedLengthBytes);
    cell::putLength(begin, code, usedLengthBytes);
    return begin;
}

} // namespace corvanta
