// Copies text into a composed file while replacing the characters that the file's syntax reserves.
//
// Most cells hold none of them: eight units are compared at a time, and clean units are copied
// unchanged. Texts are UTF-16 and may hold lone surrogates, which are copied like other units; the
// encoder decides about them. Sizes are in units. Threads: pure functions.
//
// An `Escapes` type decides which units are replaced. Both functions must agree: specials() may
// mark no unit for which replacement() is empty, and must mark all others.
//
//     static __m128i specials(__m128i units);            // which of eight units are replaced
//     static std::u16string_view replacement(char16_t);  // by what; empty: the unit stays
//     static constexpr qsizetype kWorst;                 // units that one unit becomes, at most
#pragma once
#include <QtGlobal>

#include <emmintrin.h>

#include <cstring>
#include <string_view>

namespace corvanta::compose {

// Lanes: 16 bits for each of the eight units of a vector. SSE2 suffices, which every 64-bit x86
// processor has.

/// A lane of all ones for each of eight units that is `wanted`, of zeros for the others.
inline __m128i sameUnit(__m128i units, char16_t wanted)
{
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(wanted)));
}

/// Which of the units are control characters (below U+0020), as lanes of ones. The subtraction
/// saturates at 0, because SSE2 has no unsigned comparison.
inline __m128i controlUnits(__m128i units)
{
    return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x1F)), _mm_setzero_si128());
}

/// Text between the quotes of a JSON string: quotes and backslashes, nothing else. Control
/// characters stay as they are, which RFC 8259, section 7, does not allow; JsonStrictEscapes is the
/// alternative.
struct JsonEscapes
{
    /// Lanes of ones for the units that are replaced.
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(sameUnit(units, u'"'), sameUnit(units, u'\\'));
    }
    /// What `unit` becomes; empty for a unit that is copied.
    static std::u16string_view replacement(char16_t unit)
    {
        return unit == u'"' ? u"\\\"" : unit == u'\\' ? u"\\\\" : std::u16string_view();
    }
    /// Size of the longest replacement.
    static constexpr qsizetype kWorst = 2;
};

/// The escapes of JsonEscapes, and line feeds as backslash and n. Carriage returns and other
/// control characters stay as they are.
struct JsonEscapesWithLineFeed
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(JsonEscapes::specials(units), sameUnit(units, u'\n'));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        return unit == u'\n' ? u"\\n" : JsonEscapes::replacement(unit);
    }
    static constexpr qsizetype kWorst = 2;
};

/// The escapes of JsonEscapes, and all control characters, as RFC 8259, section 7, requires: in the
/// short form where there is one, otherwise as four lowercase hexadecimal digits.
struct JsonStrictEscapes
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(JsonEscapes::specials(units), controlUnits(units));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        // By unit; the short forms are those of RFC 8259, section 7.
        constexpr std::u16string_view controls[] = {
            u"\\u0000", u"\\u0001", u"\\u0002", u"\\u0003", u"\\u0004", u"\\u0005", u"\\u0006",
            u"\\u0007", u"\\b",     u"\\t",     u"\\n",     u"\\u000b", u"\\f",     u"\\r",
            u"\\u000e", u"\\u000f", u"\\u0010", u"\\u0011", u"\\u0012", u"\\u0013", u"\\u0014",
            u"\\u0015", u"\\u0016", u"\\u0017", u"\\u0018", u"\\u0019", u"\\u001a", u"\\u001b",
            u"\\u001c", u"\\u001d", u"\\u001e", u"\\u001f"};
        return unit < u' ' ? controls[unit] : JsonEscapes::replacement(unit);
    }
    static constexpr qsizetype kWorst = 6;
};

/// Text between XML tags: less-than signs and ampersands, which XML 1.0, section 2.4, requires.
/// Parsers change the line ends that stay (2.11), and reject control characters and "]]>".
struct XmlTextEscapes
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(sameUnit(units, u'<'), sameUnit(units, u'&'));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        return unit == u'<' ? u"&lt;" : unit == u'&' ? u"&amp;" : std::u16string_view();
    }
    static constexpr qsizetype kWorst = 5;
};

/// An XML attribute. Kept for saved graphs: an apostrophe becomes &quot; while a double quote and a
/// less-than sign stay, although double quotes delimit the value and XML 1.0, section 2.3, allows
/// neither there; XmlStrictEscapes is the alternative.
struct XmlAttributeEscapes
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(sameUnit(units, u'&'), sameUnit(units, u'\''));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        return unit == u'&' ? u"&amp;" : unit == u'\'' ? u"&quot;" : std::u16string_view();
    }
    static constexpr qsizetype kWorst = 6;
};

/// Text of elements and attributes that an XML 1.0 parser returns unchanged: line ends and tabs are
/// written as character references, which the normalisation of line ends (2.11) and attribute
/// values (3.3.3) leaves alone. ">" is escaped because of "]]>". Characters that XML 1.0 does not
/// have (2.2) become U+FFFF, another one of them, which TextBlock::replaceUnknown() counts and
/// replaces, as lone surrogates.
struct XmlStrictEscapes
{
    static __m128i specials(__m128i units)
    {
        const __m128i markup =
            _mm_or_si128(XmlTextEscapes::specials(units),
                         _mm_or_si128(sameUnit(units, u'>'), sameUnit(units, u'"')));
        return _mm_or_si128(_mm_or_si128(markup, controlUnits(units)), sameUnit(units, u'\xFFFE'));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        switch (unit) {
        case u'>':
            return u"&gt;";
        case u'"':
            return u"&quot;";
        case u'\t':
            return u"&#9;";
        case u'\n':
            return u"&#10;";
        case u'\r':
            return u"&#13;";
        // Not a character of XML, unlike the other non-characters of Unicode.
        case u'\xFFFE':
            return u"\xFFFF";
        default:
            return unit < u' ' ? u"\xFFFF" : XmlTextEscapes::replacement(unit);
        }
    }
    static constexpr qsizetype kWorst = 6;
};

/// The exact number of units that `n` units become. Slower than the bound n * kWorst; for texts
/// that are too long to reserve that much.
template <class Escapes> qsizetype escapedSize(const char16_t *in, qsizetype n)
{
    qsizetype size = n;
    for (qsizetype i = 0; i < n; ++i) {
        const auto replaced = static_cast<qsizetype>(Escapes::replacement(in[i]).size());
        size += replaced != 0 ? replaced - 1 : 0;
    }
    return size;
}

namespace detail {

// Eight or four units, from and to addresses that need no alignment.
inline __m128i loadUnits(const char16_t *in)
{
    return _mm_loadu_si128(reinterpret_cast<const __m128i *>(in));
}
inline __m128i loadFourUnits(const char16_t *in)
{
    return _mm_loadl_epi64(reinterpret_cast<const __m128i *>(in));
}
inline void storeUnits(char16_t *out, __m128i units)
{
    _mm_storeu_si128(reinterpret_cast<__m128i *>(out), units);
}
inline void storeFourUnits(char16_t *out, __m128i units)
{
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out), units);
}

/// Two bits for each special unit of eight; bits 0 and 1 are the first unit's.
template <class Escapes> inline unsigned specialBits(__m128i units)
{
    return static_cast<unsigned>(_mm_movemask_epi8(Escapes::specials(units)));
}
/// The number of units before the first special one, from 0 to 7. `bits` is a result of
/// specialBits() other than 0.
inline qsizetype unitsBefore(unsigned bits)
{
    return __builtin_ctz(bits) / 2;
}

// The parts of copyClean(), which have its contract. Always inlined: they run for every cell.

/// Copy the end of a text of at least eight units, all of which but the last seven are known to be
/// clean: the last eight units, which overlap these.
template <class Escapes>
[[gnu::always_inline]] inline qsizetype copyLastEight(const char16_t *in, qsizetype n,
                                                      char16_t *out)
{
    const __m128i units = loadUnits(in + n - 8);
    storeUnits(out + n - 8, units);
    const unsigned bits = specialBits<Escapes>(units);
    return bits != 0 ? n - 8 + unitsBefore(bits) : n;
}

/// Copy a text of one to seven units. Four or more are two halves that overlap; when one of them
/// has a special unit, the loop finds which.
template <class Escapes>
[[gnu::always_inline]] inline qsizetype copyUpToSeven(const char16_t *in, qsizetype n,
                                                      char16_t *out)
{
    if (n >= 4) {
        const __m128i first = loadFourUnits(in);
        const __m128i last = loadFourUnits(in + n - 4);
        storeFourUnits(out, first);
        storeFourUnits(out + n - 4, last);
        if (specialBits<Escapes>(_mm_unpacklo_epi64(first, last)) == 0) {
            return n;
        }
    }
    qsizetype i = 0;
    for (; i < n && Escapes::replacement(in[i]).empty(); ++i) {
        out[i] = in[i];
    }
    return i;
}

/// Copy clean units up to the first special one; returns their number, or `n`. Up to `n` units of
/// `out` are overwritten, also those after the returned number. Reads and writes nothing beyond
/// `n` units: cells end where the row's memory ends.
template <class Escapes> qsizetype copyClean(const char16_t *in, qsizetype n, char16_t *out)
{
    qsizetype i = 0;
    // The units are stored before they are known to be clean, which saves a branch: the caller
    // overwrites what follows the first special unit.
    for (; i + 8 <= n; i += 8) {
        const __m128i units = loadUnits(in + i);
        storeUnits(out + i, units);
        const unsigned bits = specialBits<Escapes>(units);
        if (bits != 0) {
            return i + unitsBefore(bits);
        }
    }
    if (i == n) {
        return n;
    }
    return n >= 8 ? copyLastEight<Escapes>(in, n, out) : copyUpToSeven<Escapes>(in, n, out);
}

} // namespace detail

/// Escape `n` units into `out`, which has room for kWorst times as many, or for escapedSize() units
/// if that was computed; returns the end. `in` and `out` must not overlap.
template <class Escapes> char16_t *putEscaped(const char16_t *in, qsizetype n, char16_t *out)
{
    for (;;) {
        const qsizetype clean = detail::copyClean<Escapes>(in, n, out);
        out += clean;
        if (clean == n) {
            return out;
        }
        const std::u16string_view replacement = Escapes::replacement(in[clean]);
        std::memcpy(out, replacement.data(), replacement.size() * sizeof(char16_t));
        out += replacement.size();
        in += clean + 1;
        n -= clean + 1;
    }
}

} // namespace corvanta::compose
