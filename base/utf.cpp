// Sequences of UTF-8 (RFC 3629; well-formed ones: The Unicode Standard, table 3-7):
//
//     code points        bytes
//     0000 ..   007F     0xxxxxxx
//     0080 ..   07FF     110xxxxx 10xxxxxx             lead C2 .. DF
//     0800 ..   FFFF     1110xxxx 10xxxxxx 10xxxxxx    without D800 .. DFFF
//    10000 .. 10FFFF     11110xxx 10xxxxxx 10xxxxxx 10xxxxxx
#include "base/utf.h"

#include <QChar>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

constexpr qsizetype kMaxSequence = 4;

bool isContinuation(uchar byte)
{
    return (byte & 0xC0) == 0x80;
}

/// Whether no unit is larger than 0x7F.
bool isAscii(__m128i units)
{
    const __m128i high = _mm_and_si128(units, _mm_set1_epi16(static_cast<short>(0xFF80)));
    return _mm_movemask_epi8(_mm_cmpeq_epi16(high, _mm_setzero_si128())) == 0xFFFF;
}

/// Narrow 8 units if they are ASCII.
inline bool narrow8(const char16_t *in, char *out)
{
    const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
    if (!isAscii(units)) {
        return false;
    }
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out), _mm_packus_epi16(units, units));
    return true;
}

/// Narrow ASCII from `in`, 16 units at a time; returns how many units were taken. The last 8 units
/// may overlap those before, which is faster than a loop for the rest.
qsizetype narrowAscii(const char16_t *in, qsizetype n, char *out)
{
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const __m128i a = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        const __m128i b = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i + 8));
        if (!isAscii(_mm_or_si128(a, b))) {
            break;
        }
        _mm_storeu_si128(reinterpret_cast<__m128i *>(out + i), _mm_packus_epi16(a, b));
    }
    if (n - i >= 8 && narrow8(in + i, out + i)) {
        i += 8;
    }
    if (n >= 8 && n - i < 8 && narrow8(in + n - 8, out + n - 8)) {
        return n;
    }
    for (; i < n && in[i] < 0x80; ++i) {
        out[i] = static_cast<char>(in[i]);
    }
    return i;
}

/// Widen 8 bytes if they are ASCII.
inline bool widen8(const char *in, char16_t *out)
{
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i *>(in));
    if (_mm_movemask_epi8(bytes) != 0) {
        return false;
    }
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out),
                     _mm_unpacklo_epi8(bytes, _mm_setzero_si128()));
    return true;
}

/// Bytes of ASCII at the start of `in`.
qsizetype countAscii(const char *in, qsizetype n)
{
    qsizetype i = 0;
    for (; i + 16 <= n; i += 16) {
        const int mask =
            _mm_movemask_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i)));
        if (mask != 0) {
            return i + __builtin_ctz(static_cast<unsigned>(mask));
        }
    }
    while (i < n && static_cast<uchar>(in[i]) < 0x80) {
        ++i;
    }
    return i;
}

/// Decode one multi-byte sequence; returns its size in bytes, 0 when it is ill-formed or truncated.
/// (A count and not a Result: this runs for every character that is not ASCII.)
inline int decodeSequence(const uchar *in, qsizetype n, char32_t *codePoint)
{
    const uchar lead = in[0];
    if (lead >= 0xC2 && lead <= 0xDF && n >= 2 && isContinuation(in[1])) {
        *codePoint = static_cast<char32_t>((lead & 0x1F) << 6 | (in[1] & 0x3F));
        return 2;
    }
    if ((lead & 0xF0) == 0xE0 && n >= 3 && isContinuation(in[1]) && isContinuation(in[2])) {
        *codePoint =
            static_cast<char32_t>((lead & 0x0F) << 12 | (in[1] & 0x3F) << 6 | (in[2] & 0x3F));
        return *codePoint < 0x800 || QChar::isSurrogate(*codePoint) ? 0 : 3;
    }
    if (lead >= 0xF0 && lead <= 0xF4 && n >= 4 && isContinuation(in[1]) && isContinuation(in[2]) &&
        isContinuation(in[3])) {
        *codePoint = static_cast<char32_t>((lead & 0x07) << 18 | (in[1] & 0x3F) << 12 |
                                           (in[2] & 0x3F) << 6 | (in[3] & 0x3F));
        return *codePoint < 0x10000 || *codePoint > QChar::LastValidCodePoint ? 0 : 4;
    }
    return 0;
}

/// Whether bytes that follow could complete the sequence at `in`. The lowest and the highest
/// continuation bytes decide: a second byte that is too low or too high fails with both.
bool isTruncated(const uchar *in, qsizetype n)
{
    const auto isCompletedBy = [&](uchar continuation) {
        std::array<uchar, kMaxSequence> whole{};
        whole.fill(continuation);
        std::copy_n(in, n, whole.begin());
        char32_t codePoint = 0;
        return decodeSequence(whole.data(), kMaxSequence, &codePoint) > n;
    };
    return n < kMaxSequence && (isCompletedBy(0x80) || isCompletedBy(0xBF));
}

enum class IllFormed { Replace, ReadAsLatin1 };

template <IllFormed kIllFormed>
qsizetype convertUtf8(const char *in, qsizetype n, char16_t *out, qsizetype *illFormed)
{
    const auto *const bytes = reinterpret_cast<const uchar *>(in);
    char16_t *const begin = out;
    for (qsizetype i = 0; i < n;) {
        const qsizetype ascii = asciiToUtf16(in + i, n - i, out);
        i += ascii;
        out += ascii;
        // Text outside ASCII comes in runs: stay here until the next ASCII byte.
        while (i < n && bytes[i] >= 0x80) {
            char32_t codePoint = kReplacementCharacter;
            const int taken = decodeSequence(bytes + i, n - i, &codePoint);
            if (codePoint >= 0x10000 && taken != 0) {
                *out++ = QChar::highSurrogate(codePoint);
                *out++ = QChar::lowSurrogate(codePoint);
            } else {
                constexpr bool kReplaces = kIllFormed == IllFormed::Replace;
                const char16_t instead = kReplaces ? kReplacementCharacter : bytes[i];
                *out++ = taken != 0 ? static_cast<char16_t>(codePoint) : instead;
            }
            if (taken == 0 && illFormed != nullptr) {
                ++*illFormed;
            }
            i += taken != 0 ? taken : 1;
        }
    }
    return out - begin;
}

} // namespace

qsizetype asciiToUtf16(const char *in, qsizetype n, char16_t *out)
{
    qsizetype i = 0;
    for (; i + kWidenBlock <= n; i += kWidenBlock) {
        const quint32 mask = widenBlock(in + i, out + i);
        if (mask != 0) {
            return i + __builtin_ctz(mask);
        }
    }
    if (n - i >= 8 && widen8(in + i, out + i)) {
        i += 8;
    }
    // The last 8 bytes overlap those before, which is faster than a loop for the rest.
    if (n >= 8 && n - i < 8 && widen8(in + n - 8, out + n - 8)) {
        return n;
    }
    for (; i < n && static_cast<uchar>(in[i]) < 0x80; ++i) {
        out[i] = static_cast<uchar>(in[i]);
    }
    return i;
}

qsizetype utf8ToUtf16(const char *in, qsizetype n, char16_t *out, qsizetype *illFormed)
{
    return convertUtf8<IllFormed::Replace>(in, n, out, illFormed);
}

qsizetype utf8OrLatin1ToUtf16(const char *in, qsizetype n, char16_t *out, qsizetype *illFormed)
{
    return convertUtf8<IllFormed::ReadAsLatin1>(in, n, out, illFormed);
}

qsizetype utf16ToUtf8(const char16_t *in, qsizetype n, char *out, qsizetype *replaced)
{
    char *const begin = out;
    qsizetype lone = 0;
    for (qsizetype i = 0; i < n;) {
        const qsizetype ascii = narrowAscii(in + i, n - i, out);
        i += ascii;
        out += ascii;
        while (i < n && in[i] >= 0x80) {
            char32_t c = in[i++];
            if (QChar::isSurrogate(c)) {
                const bool isPair = QChar::isHighSurrogate(c) && i < n && //
                                    QChar::isLowSurrogate(in[i]);
                c = isPair ? QChar::surrogateToUcs4(static_cast<char16_t>(c), in[i])
                           : kReplacementCharacter;
                i += isPair ? 1 : 0;
                lone += isPair ? 0 : 1;
            }
            out = putUtf8(c, out);
        }
    }
    if (replaced != nullptr) {
        *replaced += lone;
    }
    return out - begin;
}

qsizetype findLoneSurrogate(const char16_t *in, qsizetype n)
{
    qsizetype i = 0;
    for (; i < n; ++i) {
        if (!QChar::isSurrogate(in[i])) {
            continue;
        }
        if (!QChar::isHighSurrogate(in[i]) || i + 1 == n || !QChar::isLowSurrogate(in[i + 1])) {
            break;
        }
        ++i;
    }
    return i;
}

qsizetype wellFormedUtf8(const char *in, qsizetype n, Utf8Stop *stop)
{
    const auto *const bytes = reinterpret_cast<const uchar *>(in);
    qsizetype i = 0;
    while (i < n) {
        i += countAscii(in + i, n - i);
        while (i < n && bytes[i] >= 0x80) {
            char32_t codePoint = 0;
            const int taken = decodeSequence(bytes + i, n - i, &codePoint);
            if (taken == 0) {
                *stop = isTruncated(bytes + i, n - i) ? Utf8Stop::Truncated : Utf8Stop::Invalid;
                return i;
            }
            i += taken;
        }
    }
    *stop = Utf8Stop::End;
    return i;
}

} // namespace corvanta
