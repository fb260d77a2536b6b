#include "codecs/markup/line_counter.h"

#include <emmintrin.h>

namespace corvanta::markup {

namespace {

/// The first CR or LF at or behind `at`, or `n`.
qsizetype findBreak(const char *bytes, qsizetype at, qsizetype n)
{
    const __m128i lf = _mm_set1_epi8('\n');
    const __m128i cr = _mm_set1_epi8('\r');
    for (; at + 16 <= n; at += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + at));
        const int mask =
            _mm_movemask_epi8(_mm_or_si128(_mm_cmpeq_epi8(block, lf), _mm_cmpeq_epi8(block, cr)));
        if (mask != 0) {
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    while (at < n && bytes[at] != '\n' && bytes[at] != '\r') {
        ++at;
    }
    return at;
}

/// UTF-16 units of `n` bytes of UTF-8: one for each byte that begins a character, two for four
/// bytes.
qint64 countUnits(const char *bytes, qsizetype n)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i lastContinuation = _mm_set1_epi8(static_cast<char>(0xBF));
    const __m128i fourBytes = _mm_set1_epi8(static_cast<char>(0xF0));
    __m128i sums = zero;
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes + i));
        // Continuation bytes are the lowest as signed numbers. A comparison gives -1 where it
        // holds.
        const __m128i begins = _mm_cmpgt_epi8(block, lastContinuation);
        const __m128i long4 = _mm_cmpeq_epi8(_mm_max_epu8(block, fourBytes), block);
        const __m128i units = _mm_sub_epi8(_mm_sub_epi8(zero, begins), long4);
        sums = _mm_add_epi64(sums, _mm_sad_epu8(units, zero));
    }
    qint64 units = _mm_cvtsi128_si64(sums) + _mm_cvtsi128_si64(_mm_unpackhi_epi64(sums, sums));
    for (; i < n; ++i) {
        const auto byte = static_cast<uchar>(bytes[i]);
        units += ((byte & 0xC0) != 0x80 ? 1 : 0) + (byte >= 0xF0 ? 1 : 0);
    }
    return units;
}

} // namespace

void LineCounter::breakLine(char c)
{
    m_column = 0;
    if (m_openBreak != 0 && m_openBreak != c) {
        m_openBreak = 0;
        return;
    }
    ++m_line;
    m_openBreak = c;
}

void LineCounter::advance(const char *bytes, qsizetype n)
{
    qsizetype at = 0;
    while (at < n) {
        const qsizetype found = findBreak(bytes, at, n);
        if (found > at) {
            m_openBreak = 0;
        }
        if (found == n) {
            m_column += countUnits(bytes + at, n - at);
            return;
        }
        breakLine(bytes[found]);
        at = found + 1;
    }
}

} // namespace corvanta::markup
