#include "base/utf.h"

#include <emmintrin.h>

namespace corvanta {

namespace {

constexpr char16_t kReplacement = 0xFFFD;

bool isContinuation(uchar byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Narrow ASCII from `in`, 16 units at a time; returns how many units were taken.
qsizetype narrowAscii(const char16_t *in, qsizetype n, char *out)
{
    const __m128i high = _mm_set1_epi16(static_cast<short>(0xFF80));
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i + 8));
        const __m128i wide = _mm_and_si128(_mm_or_si128(a, b), high);
        if (_mm_movemask_epi8(_mm_cmpeq_epi16(wide, _mm_setzero_si128())) != 0xFFFF) {
            break;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_packus_epi16(a, b));
    }
    for (; i < n && in[i] < 0x80; ++i) {
        out[i] = static_cast<char>(in[i]);
    }
    return i;
}

/// Decode one multi-byte sequence (Unicode standard, table 3-7); returns the bytes it takes, 0 when
/// it is ill-formed.
int decodeSequence(const uchar *in, qsizetype n, char32_t *codePoint)
{
    const uchar lead = in[0];
    if (lead >= 0xC2 && lead <= 0xDF && n >= 2 && isContinuation(in[1])) {
        *codePoint = static_cast<char32_t>((lead & 0x1F) << 6 | (in[1] & 0x3F));
        return 2;
    }
    if ((lead & 0xF0) == 0xE0 && n >= 3 && isContinuation(in[1]) && isContinuation(in[2])) {
        *codePoint =
            static_cast<char32_t>((lead & 0x0F) << 12 | (in[1] & 0x3F) << 6 | (in[2] & 0x3F));
        const bool surrogate = *codePoint >= 0xD800 && *codePoint <= 0xDFFF;
        return *codePoint < 0x800 || surrogate ? 0 : 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4 && n >= 4 && isContinuation(in[1]) && isContinuation(in[2]) &&
        isContinuation(in[3])) {
        *codePoint = static_cast<char32_t>((lead & 0x07) << 18 | (in[1] & 0x3F) << 12 |
                                           (in[2] & 0x3F) << 6 | (in[3] & 0x3F));
        return *codePoint < 0x10000 || *codePoint > 0x10FFFF ? 0 : 4;
    }
    return 0;
}

} // namespace

qsizetype asciiToUtf16(const char *in, qsizetype n, char16_t *out)
{
    const __m128i zero = _mm_setzero_si128();
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        const int mask = _mm_movemask_epi8(bytes);
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_unpacklo_epi8(bytes, zero));
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i + 8), _mm_unpackhi_epi8(bytes, zero));
        if (mask != 0) {
            return i + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    for (; i < n && static_cast<uchar>(in[i]) < 0x80; ++i) {
        out[i] = static_cast<uchar>(in[i]);
    }
    return i;
}

namespace {

enum class IllFormed { Replace, TakeAsLatin1 };

template <IllFormed kIllFormed> qsizetype convertUtf8(const char *in, qsizetype n, char16_t *out)
{
    const auto *const bytes = reinterpret_cast<const uchar *>(in);
    char16_t *const begin = out;
    for (qsizetype i = 0; i < n;) {
        const qsizetype ascii = asciiToUtf16(in + i, n - i, out);
        i += ascii;
        out += ascii;
        // Text outside ASCII comes in runs: stay here until the next ASCII byte.
        while (i < n && bytes[i] >= 0x80) {
            char32_t codePoint = kReplacement;
            const int taken = decodeSequence(bytes + i, n - i, &codePoint);
            if (codePoint >= 0x10000 && taken != 0) {
                *out++ = static_cast<char16_t>(0xD7C0 + (codePoint >> 10));
                *out++ = static_cast<char16_t>(0xDC00 | (codePoint & 0x3FF));
            } else {
                constexpr bool kReplaces = kIllFormed == IllFormed::Replace;
                const char16_t instead = kReplaces ? kReplacement : bytes[i];
                *out++ = taken != 0 ? static_cast<char16_t>(codePoint) : instead;
            }
            i += taken != 0 ? taken : 1;
        }
    }
    return out - begin;
}

} // namespace

qsizetype utf8ToUtf16(const char *in, qsizetype n, char16_t *out)
{
    return convertUtf8<IllFormed::Replace>(in, n, out);
}

qsizetype utf8OrLatin1ToUtf16(const char *in, qsizetype n, char16_t *out)
{
    return convertUtf8<IllFormed::TakeAsLatin1>(in, n, out);
}

qsizetype utf16ToUtf8(const char16_t *in, qsizetype n, char *out)
{
    char *const begin = out;
    for (qsizetype i = 0; i < n;) {
        const qsizetype ascii = narrowAscii(in + i, n - i, out);
        i += ascii;
        out += ascii;
        while (i < n && in[i] >= 0x80) {
            char32_t unit = in[i++];
            if (unit < 0x800) {
                *out++ = static_cast<char>(0xC0 | unit >> 6);
                *out++ = static_cast<char>(0x80 | (unit & 0x3F));
                continue;
            }
            if ((unit & 0xF800) == 0xD800) {
                const bool pair = unit < 0xDC00 && i < n && (in[i] & 0xFC00) == 0xDC00;
                if (pair) {
                    unit = 0x10000 + ((unit & 0x3FF) << 10) + (in[i++] & 0x3FFU);
                    *out++ = static_cast<char>(0xF0 | unit >> 18);
                    *out++ = static_cast<char>(0x80 | (unit >> 12 & 0x3F));
                    *out++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
                    *out++ = static_cast<char>(0x80 | (unit & 0x3F));
                    continue;
                }
                unit = kReplacement;
            }
            *out++ = static_cast<char>(0xE0 | unit >> 12);
            *out++ = static_cast<char>(0x80 | (unit >> 6 & 0x3F));
            *out++ = static_cast<char>(0x80 | (unit & 0x3F));
        }
    }
    return out - begin;
}

} // namespace corvanta
