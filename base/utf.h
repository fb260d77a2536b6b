// Converts between UTF-8 and UTF-16 in blocks and cells, without QString and without allocation.
//
// This is the only implementation of these conversions. Tests of single surrogates are QChar's.
// All functions are pure; any thread may call them.
#pragma once
#include <QtGlobal>

#include <emmintrin.h>

namespace corvanta {

/// Replaces ill-formed sequences and lone surrogates.
inline constexpr char16_t kReplacementCharacter = 0xFFFD;

/// The most bytes that one UTF-16 unit becomes in UTF-8. A surrogate pair is two units and becomes
/// four bytes.
inline constexpr qsizetype kUtf8BytesPerUnit = 3;

/// Convert `n` bytes of UTF-8 into `out`, which has room for `n` units; returns the units written.
/// Each byte of an ill-formed sequence becomes one U+FFFD: overlong forms, encoded surrogates and
/// code points above 0x10FFFF are ill-formed, as are sequences that the end of `in` truncates. Each
/// adds 1 to `*illFormed`.
qsizetype utf8ToUtf16(const char *in, qsizetype n, char16_t *out, qsizetype *illFormed = nullptr);

/// Like utf8ToUtf16(), but each byte of an ill-formed sequence becomes the Latin-1 character of its
/// value and adds 1 to `*illFormed`.
qsizetype utf8OrLatin1ToUtf16(const char *in, qsizetype n, char16_t *out,
                              qsizetype *illFormed = nullptr);

/// Widen the ASCII bytes at the start of `in` into `out`; returns how many there are. `out` has
/// room for `n` units; units after the returned count may be overwritten.
qsizetype asciiToUtf16(const char *in, qsizetype n, char16_t *out);

/// Bytes that widenBlock() reads, and units that it writes.
inline constexpr qsizetype kWidenBlock = 16;

/// Widen kWidenBlock bytes, whatever they hold. Returns a bit for each byte that is not ASCII; bit
/// 0 is the first byte.
inline quint32 widenBlock(const char *in, char16_t *out)
{
    const __m128i zero = _mm_setzero_si128();
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), _mm_unpacklo_epi8(bytes, zero));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out + 8), _mm_unpackhi_epi8(bytes, zero));
    return static_cast<quint32>(_mm_movemask_epi8(bytes));
}

/// Convert `n` units of UTF-16 into `out`, which has room for kUtf8BytesPerUnit bytes per unit;
/// returns the bytes written. Surrogate pairs are combined; a lone surrogate becomes U+FFFD and
/// adds 1 to `*replaced`.
qsizetype utf16ToUtf8(const char16_t *in, qsizetype n, char *out, qsizetype *replaced = nullptr);

/// The index of the first lone surrogate; `n` without one.
qsizetype findLoneSurrogate(const char16_t *in, qsizetype n);

/// Write one code point (at most 0x10FFFF) as one to four bytes; returns the end of them.
inline char *putUtf8(char32_t c, char *out)
{
    if (c < 0x80) {
        *out++ = static_cast<char>(c);
        return out;
    }
    if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
    } else {
        if (c < 0x10000) {
            *out++ = static_cast<char>(0xE0 | c >> 12);
        } else {
            *out++ = static_cast<char>(0xF0 | c >> 18);
            *out++ = static_cast<char>(0x80 | (c >> 12 & 0x3F));
        }
        *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
    }
    *out++ = static_cast<char>(0x80 | (c & 0x3F));
    return out;
}

/// Why wellFormedUtf8() stopped.
enum class Utf8Stop : quint8 {
    /// All bytes are well-formed.
    End,
    /// The rest, at most 3 bytes, is the beginning of a well-formed sequence. More input is needed.
    Truncated,
    /// The next byte does not begin a well-formed sequence.
    Invalid,
};

/// Bytes at the start of `in` that are complete, well-formed characters; sets `*stop`.
qsizetype wellFormedUtf8(const char *in, qsizetype n, Utf8Stop *stop);

} // namespace corvanta
