// Text in a cell (ECMA-376 part 1, 22.9.2.19, ST_Xstring):
//
//   <      &lt;        U+0000 to U+001F   _x0000_ to _x001F_
//   &      &amp;       _xHHHH_            _x005F_xHHHH_  (H: a hexadecimal digit)
//   U+FFFE _           a lone surrogate   U+FFFD
//
// The last underscore of _xHHHH_ may be the first one of an escape or of U+FFFE.
// Everything else is UTF-8.
#include "codecs/sheet/cell_text.h"

#include "base/utf.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace corvanta::sheet {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

/// Of either case, as programs read both.
bool isHex(char16_t unit)
{
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') ||
           (unit >= u'A' && unit <= u'F');
}

/// Whether a unit is written as something that starts with an underscore.
bool becomesUnderscore(char16_t unit)
{
    return unit == u'_' || unit < 32 || unit == 0xFFFE;
}

/// Whether an underscore in place of text[0] starts something that reads as an escape: _xHHHH_. The
/// last underscore may be that of the escape of text[6].
bool startsEscape(const char16_t *text, qsizetype n)
{
    return n >= 7 && text[1] == u'x' && isHex(text[2]) && isHex(text[3]) && isHex(text[4]) &&
           isHex(text[5]) && becomesUnderscore(text[6]);
}

char *put(char *out, const char *text, size_t n)
{
    std::memcpy(out, text, n);
    return out + n;
}

/// The escape of a control character: _x000A_ for a line feed.
char *putControl(char *out, char16_t unit)
{
    out = put(out, "_x00", 4);
    *out++ = kHexDigits[unit >> 4];
    *out++ = kHexDigits[unit & 15];
    *out++ = '_';
    return out;
}

/// A unit from U+0080 on; a surrogate without its partner becomes U+FFFD.
char *putWide(const char16_t *text, qsizetype n, char *out, int *taken, bool *isOdd)
{
    const char16_t unit = text[0];
    if (!QChar::isSurrogate(unit)) {
        *isOdd |= unit == 0xFFFF;
        return putUtf8(unit, out);
    }
    if (QChar::isHighSurrogate(unit) && n > 1 && QChar::isLowSurrogate(text[1])) {
        *taken = 2;
        return putUtf8(QChar::surrogateToUcs4(unit, text[1]), out);
    }
    *isOdd = true;
    return putUtf8(kReplacementCharacter, out);
}

/// Escape the unit or surrogate pair at text[0]; `*taken` is the number of its units.
char *escapeOne(const char16_t *text, qsizetype n, char *out, int *taken, bool *isOdd)
{
    const char16_t unit = text[0];
    *taken = 1;
    if (unit == u'<') {
        return put(out, "&lt;", 4);
    }
    if (unit == u'&') {
        return put(out, "&amp;", 5);
    }
    if (unit < 32) {
        return putControl(out, unit);
    }
    if ((unit == u'_' || unit == 0xFFFE) && startsEscape(text, n)) {
        return put(out, "_x005F_", 7);
    }
    if (unit == 0xFFFE) {
        *isOdd = true;
        *out++ = '_';
        return out;
    }
    return putWide(text, n, out, taken, isOdd);
}

/// Characters, in UTF-16 units, of an escaped piece that `taken` units became.
int charsOf(const char *begin, const char *end, int taken)
{
    // A pair is two characters and four bytes; everything in ASCII is as many characters as bytes.
    return static_cast<uchar>(*begin) < 0x80 ? static_cast<int>(end - begin) : taken;
}

/// A number as the format writes it, without the spaces around it.
QByteArray printed(const FloatFormat &format, double number)
{
    QByteArray text;
    format.append(number, &text);
    return text.trimmed();
}

/// Whether a number that the format writes reads back as the same number.
bool readsBack(const FloatFormat &format, double sample)
{
    const QByteArray number = printed(format, sample);
    double read = -2; // none of the samples
    return parseDouble({number.data(), static_cast<size_t>(number.size())}, &read) &&
           read == sample;
}

} // namespace

char *escapeText(const char16_t *text, qsizetype n, char *out, bool *isOdd)
{
    const __m128i controls =
        _mm_set1_epi16(32); // compared as signed: units from 0x8000 on count as low
    const __m128i less = _mm_set1_epi16('<');
    const __m128i ampersands = _mm_set1_epi16('&');
    const __m128i underscores = _mm_set1_epi16('_');
    const __m128i highest = _mm_set1_epi16(0x7F);
    qsizetype i = 0;
    int taken = 0;
    // Eight units at a time, up to the first one that needs more than a copy of its low byte.
    while (i + 8 <= n) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(text + i));
        const __m128i special = _mm_or_si128(
            _mm_or_si128(_mm_cmplt_epi16(units, controls), _mm_cmpgt_epi16(units, highest)),
            _mm_or_si128(
                _mm_or_si128(_mm_cmpeq_epi16(units, less), _mm_cmpeq_epi16(units, ampersands)),
                _mm_cmpeq_epi16(units, underscores)));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(out), _mm_packus_epi16(units, units));
        const int mask = _mm_movemask_epi8(special);
        if (mask == 0) {
            i += 8;
            out += 8;
            continue;
        }
        const int plain = __builtin_ctz(static_cast<unsigned>(mask)) / 2;
        i += plain;
        out = escapeOne(text + i, n - i, out + plain, &taken, isOdd);
        i += taken;
    }
    for (; i < n; i += taken) {
        out = escapeOne(text + i, n - i, out, &taken, isOdd);
    }
    return out;
}

qsizetype escapeLongText(const char16_t *text, qsizetype n, AtLimit atLimit, qsizetype maxChars,
                         const std::function<void()> &tooLong, std::vector<char> *out, bool *isOdd)
{
    out->clear();
    qsizetype chars = 0;
    int taken = 0;
    std::array<char, 16> piece{};
    for (qsizetype i = 0; i < n && chars <= maxChars; i += taken) {
        char *const end = escapeOne(text + i, n - i, piece.data(), &taken, isOdd);
        const int pieceChars = charsOf(piece.data(), end, taken);
        if (chars + pieceChars >= kCellCharLimit) {
            tooLong();
            if (atLimit == AtLimit::Crop) {
                return chars;
            }
        }
        out->insert(out->end(), piece.data(), end);
        chars += pieceChars;
    }
    return chars;
}

/// Digits of base 26 without a zero: Z is followed by AA.
QByteArray columnLetters(int column0)
{
    QByteArray letters;
    for (int rest = column0 + 1; rest > 0; rest = (rest - 1) / 26) {
        letters.prepend(static_cast<char>('A' + (rest - 1) % 26));
    }
    return letters;
}

bool printsNumbers(const FloatFormat &format)
{
    // Exact in every precision, so that a difference comes from other characters.
    constexpr std::array<double, 4> kSamples{0, 1, -1, 1e300};
    return std::all_of(kSamples.begin(), kSamples.end(),
                       [&](double sample) { return readsBack(format, sample); });
}

std::optional<LinkText> parseLink(std::u16string_view text)
{
    constexpr std::u16string_view opening = u"URL(";
    constexpr std::u16string_view middle = u"\",\"";
    // The label starts after a quote, which is not checked.
    constexpr size_t begin = opening.size() + 1;
    if (text.size() < begin || text.substr(0, opening.size()) != opening) {
        return std::nullopt;
    }
    // At least four units must follow the middle: with fewer, the whole text is label and URL.
    constexpr size_t kMinLinkUnits = 11;
    const size_t found = text.size() < kMinLinkUnits ? text.npos : text.find(middle, begin);
    const bool hasLabel = found != text.npos && found + 6 < text.size();
    for (const char16_t closing : {u')', u'"'}) {
        if (!text.empty() && text.back() == closing) {
            text.remove_suffix(1);
        }
    }
    if (!hasLabel) {
        const std::u16string_view both = text.substr(std::min(begin, text.size()));
        return LinkText{both, both};
    }
    return LinkText{text.substr(begin, found - begin), text.substr(found + middle.size())};
}

} // namespace corvanta::sheet
