// Finds the next interesting byte for the tokenizers, sixteen bytes at a time.
//
// Every scan stops at a NUL and may load up to kReadAhead bytes starting at any place in the data
// of a tokenizer's buffer; at least that many NULs follow the data. So no scan needs the end of the
// data: a NUL is both the end and, at another place, a byte of the document, and the caller
// distinguishes the two by the position. Threads: pure functions.
#pragma once
#include "codecs/markup/text/raw_text.h"

#include <emmintrin.h>

#include <cstring>

namespace corvanta::markup {

namespace scan {

/// The mask of a block in which every byte is a hit: one bit for each of 16 bytes.
inline constexpr quint32 kAll = 0xFFFF;

/// The 16 bytes at `at`, which need no alignment.
inline __m128i load(const char *at)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(at));
}
/// 0xFF for each byte of `block` that is `c`, 0 for the others.
inline __m128i is(__m128i block, char c)
{
    return _mm_cmpeq_epi8(block, _mm_set1_epi8(c));
}
/// 0xFF for each byte of `block` that is one of the `count` characters starting at `first`. The
/// distance wraps around for smaller bytes, so that one unsigned comparison tests both bounds; SSE2
/// has none, but a minimum that equals its operand is one.
inline __m128i isOneFrom(__m128i block, char first, char count)
{
    const __m128i distance = _mm_sub_epi8(block, _mm_set1_epi8(first));
    const __m128i last = _mm_set1_epi8(static_cast<char>(count - 1));
    return _mm_cmpeq_epi8(_mm_min_epu8(distance, last), distance);
}
/// A bit for each byte of `hits` that is 0xFF. Bit 0 is the first byte.
inline quint32 mask(__m128i hits)
{
    return static_cast<quint32>(_mm_movemask_epi8(hits));
}

/// The first byte at or after `at` for which the mask hits(block) has a bit. `hits` must have one
/// for NUL, or the scan leaves the buffer.
template <typename Hits> const char *find(const char *at, Hits hits)
{
    static_assert(sizeof(__m128i) <= kReadAhead);
    for (;; at += sizeof(__m128i)) {
        const quint32 found = hits(load(at));
        if (found != 0) {
            return at + __builtin_ctz(found);
        }
    }
}

} // namespace scan

/// True when the `n` bytes at `a` and at `b` are equal. Loads 16 bytes at both, whatever `n` is.
inline bool equalBytes(const char *a, const char *b, size_t n)
{
    if (n > sizeof(__m128i)) {
        return std::memcmp(a, b, n) == 0;
    }
    const quint32 same = scan::mask(_mm_cmpeq_epi8(scan::load(a), scan::load(b)));
    return ((same ^ scan::kAll) & ((1U << n) - 1)) == 0;
}

/// The first `a`, `b` or NUL at or after `at`. Texts and attribute values of XML end in this way.
inline const char *findEither(const char *at, char a, char b)
{
    return scan::find(at, [a, b](__m128i block) {
        const __m128i hit = _mm_or_si128(scan::is(block, a), scan::is(block, b));
        return scan::mask(_mm_or_si128(hit, scan::is(block, 0)));
    });
}

/// The first byte that is not a space (CharClass::Space).
// Two pairs of comparisons are faster here than one table lookup per byte. A NUL is not a space.
inline const char *skipSpaces(const char *at)
{
    if (static_cast<uchar>(*at) > ' ') {
        return at; // as most often: no space at all
    }
    if (*at == ' ' && static_cast<uchar>(at[1]) > ' ') {
        return at + 1; // the blank after a colon or comma
    }
    return scan::find(at, [](__m128i block) {
        const __m128i breaks = _mm_or_si128(scan::is(block, '\n'), scan::is(block, '\r'));
        const __m128i blanks = _mm_or_si128(scan::is(block, ' '), scan::is(block, '\t'));
        return scan::mask(_mm_or_si128(breaks, blanks)) ^ scan::kAll;
    });
}

/// The first byte that is not a name character (isNameChar()). Bytes of characters beyond ASCII are
/// name characters, so a name is never split inside a character.
inline const char *skipNameChars(const char *at)
{
    return scan::find(at, [](__m128i block) {
        const __m128i letter = scan::isOneFrom(_mm_or_si128(block, _mm_set1_epi8(0x20)), 'a', 26);
        // "-", ".", "/", the digits and ":" are consecutive; "/" is not a name character.
        const __m128i digit =
            _mm_andnot_si128(scan::is(block, '/'), scan::isOneFrom(block, '-', 14));
        const __m128i name = _mm_or_si128(_mm_or_si128(letter, digit), scan::is(block, '_'));
        return (scan::mask(name) | scan::mask(block)) ^
               scan::kAll; // bytes above 0x7F are name characters
    });
}

/// The first byte that is not a character of a JSON number (charset::kNumber).
inline const char *skipNumberChars(const char *at)
{
    return scan::find(at, [](__m128i block) {
        // "-", ".", "/" and the digits are consecutive.
        const __m128i digit =
            _mm_andnot_si128(scan::is(block, '/'), scan::isOneFrom(block, '-', 13));
        const __m128i exponent = scan::is(_mm_or_si128(block, _mm_set1_epi8(0x20)), 'e');
        const __m128i plus = scan::is(block, '+');
        return scan::mask(_mm_or_si128(_mm_or_si128(digit, exponent), plus)) ^ scan::kAll;
    });
}

/// The first byte that ends or changes a JSON string: `quote`, a backslash or a control character,
/// among them the NUL.
inline const char *findStringStop(const char *at, char quote)
{
    return scan::find(at, [quote](__m128i block) {
        const __m128i lastControl = _mm_set1_epi8(0x1F);
        const __m128i control = _mm_cmpeq_epi8(_mm_max_epu8(block, lastControl), lastControl);
        const __m128i special = _mm_or_si128(scan::is(block, quote), scan::is(block, '\\'));
        return scan::mask(_mm_or_si128(control, special));
    });
}

} // namespace corvanta::markup
