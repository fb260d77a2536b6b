// Finds the first of several bytes in a text, 16 bytes at a time.
//
// Uses SSE2, which every x86-64 processor has. Threads: pure function.
#pragma once
#include <QtGlobal>

#include <emmintrin.h>

#include <algorithm>
#include <bit>

namespace corvanta::csv {

/// The address of the first byte in [at, end) that equals one of `wanted`; `end` if there is none.
/// Reads no byte outside that range. One to four wanted bytes cost about the same: each one adds a
/// comparison per 16 bytes.
template <class... Chars> const char *findFirstOf(const char *at, const char *end, Chars... wanted)
{
    for (; at + 16 <= end; at += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i hits = (_mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)) | ...);
        const int mask = _mm_movemask_epi8(hits);
        if (mask != 0) {
            return at + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    while (at < end && ((*at != wanted) && ...)) {
        ++at;
    }
    return at;
}

/// Whether one of the `n` bytes at `at` equals one of `wanted`. kReadAhead bytes after them are
/// read, too, and must exist. Faster than findFirstOf() for short texts.
template <class... Chars> bool hasOneOf(const char *at, qsizetype n, Chars... wanted)
{
    for (; n > 0; at += 16, n -= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        const __m128i hits = (_mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)) | ...);
        const quint32 inText = n < 16 ? (1U << n) - 1 : 0xFFFF;
        if ((static_cast<quint32>(_mm_movemask_epi8(hits)) & inText) != 0) {
            return true;
        }
    }
    return false;
}

/// Whether an odd number of the `n` bytes at `at` equals `wanted`.
inline bool hasOddNumberOf(const char *at, size_t n, char wanted)
{
    __m128i odd = _mm_setzero_si128(); // one byte per place in a block
    for (; n >= 16; at += 16, n -= 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
        odd = _mm_xor_si128(odd, _mm_cmpeq_epi8(bytes, _mm_set1_epi8(wanted)));
    }
    const auto places = static_cast<quint32>(_mm_movemask_epi8(odd));
    return (std::popcount(places) + std::count(at, at + n, wanted)) % 2 == 1;
}

/// See hasOneOf().
inline constexpr size_t kReadAhead = 15;

} // namespace corvanta::csv
