// Blocks of 16 bytes are compared in one step. Columns only matter after the last line break, so
// that the bytes before it are only searched for breaks.
#include "codecs/markup/text/line_counter.h"

#include "codecs/markup/text/scan.h"

#include <algorithm>
#include <cstring>

namespace corvanta::markup {

namespace {

bool isBreak(char c)
{
    return c == '\n' || c == '\r';
}

quint32 breakMask(const char *block)
{
    const __m128i bytes = scan::load(block);
    return scan::mask(_mm_or_si128(scan::is(bytes, '\n'), scan::is(bytes, '\r')));
}

constexpr qsizetype kBlock = sizeof(__m128i);

/// The first CR or LF at or after `at`, or `n`.
qsizetype findBreak(const char *bytes, qsizetype at, qsizetype n)
{
    for (; at + kBlock <= n; at += kBlock) {
        const quint32 found = breakMask(bytes + at);
        if (found != 0) {
            return at + __builtin_ctz(found);
        }
    }
    while (at < n && !isBreak(bytes[at])) {
        ++at;
    }
    return at;
}

/// Offset of the last line in `n` bytes.
qsizetype lastLineStart(const char *bytes, qsizetype n)
{
    for (; n >= kBlock; n -= kBlock) {
        const quint32 found = breakMask(bytes + n - kBlock);
        if (found != 0) {
            return n - __builtin_clz(found << kBlock);
        }
    }
    while (n > 0 && !isBreak(bytes[n - 1])) {
        --n;
    }
    return n;
}

/// The sum of the bytes of weigh(block) over all blocks of 16 bytes.
template <typename Weigh> qint64 sumOfBlocks(const char *bytes, qsizetype n, Weigh weigh)
{
    __m128i sums = _mm_setzero_si128();
    for (qsizetype i = 0; i + kBlock <= n; i += kBlock) {
        sums = _mm_add_epi64(sums, _mm_sad_epu8(weigh(scan::load(bytes + i)), _mm_setzero_si128()));
    }
    return _mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums));
}

qint64 countLineFeeds(const char *bytes, qsizetype n)
{
    // A comparison results in -1 where it is true.
    const qint64 inBlocks = sumOfBlocks(bytes, n, [](__m128i block) {
        return _mm_sub_epi8(_mm_setzero_si128(), scan::is(block, '\n'));
    });
    return inBlocks + std::count(bytes + n / kBlock * kBlock, bytes + n, '\n');
}

/// UTF-16 units of `n` bytes of UTF-8: one for each byte that begins a character, one more for a
/// sequence of four bytes.
qint64 countUnits(const char *bytes, qsizetype n)
{
    qint64 units = sumOfBlocks(bytes, n, [](__m128i block) {
        // As signed numbers, continuation bytes are lower than all others.
        const __m128i begins = _mm_cmpgt_epi8(block, _mm_set1_epi8(static_cast<char>(0xBF)));
        const __m128i fourBytes = _mm_set1_epi8(static_cast<char>(0xF0));
        const __m128i long4 = _mm_cmpeq_epi8(_mm_max_epu8(block, fourBytes), block);
        return _mm_sub_epi8(_mm_sub_epi8(_mm_setzero_si128(), begins), long4);
    });
    for (qsizetype i = n / kBlock * kBlock; i < n; ++i) {
        const auto byte = static_cast<uchar>(bytes[i]);
        units += ((byte & 0xC0) != 0x80 ? 1 : 0) + (byte >= 0xF0 ? 1 : 0);
    }
    return units;
}

} // namespace

void LineCounter::breakLine(char c)
{
    if (m_openBreak != 0 && m_openBreak != c) {
        m_openBreak = 0;
        return;
    }
    ++m_line;
    m_openBreak = c;
}

/// Count the breaks of bytes that end with one.
void LineCounter::countBreaks(const char *bytes, qsizetype n)
{
    qsizetype at = 0;
    if (m_openBreak != 0 && isBreak(bytes[0])) {
        breakLine(bytes[0]);
        at = 1;
    }
    // Fast path for documents without CR, unless an open CR may be completed here.
    if (at < n && m_openBreak != '\r' &&
        std::memchr(bytes + at, '\r', static_cast<size_t>(n - at)) == nullptr) {
        m_line += countLineFeeds(bytes + at, n - at);
        m_openBreak = '\n';
        return;
    }
    while (at < n) {
        const qsizetype found = findBreak(bytes, at, n);
        m_openBreak = found > at ? '\0' : m_openBreak;
        breakLine(bytes[found]);
        at = found + 1;
    }
}

void LineCounter::advance(const char *bytes, qsizetype n)
{
    const qsizetype lineStart = lastLineStart(bytes, n);
    if (lineStart > 0) {
        countBreaks(bytes, lineStart);
        m_column = 0;
    }
    if (lineStart < n) {
        m_openBreak = 0;
        m_column += countUnits(bytes + lineStart, n - lineStart);
    }
}

} // namespace corvanta::markup
