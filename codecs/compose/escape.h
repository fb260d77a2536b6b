// Copies text into a composed file while replacing the characters that the file's syntax reserves.
//
// Most cells hold none of them: eight units are compared at a time, and clean units are copied
// unchanged. An `Escapes` type decides which units are replaced:
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

inline __m128i sameUnit(__m128i units, char16_t wanted)
{
    return _mm_cmpeq_epi16(units, _mm_set1_epi16(static_cast<short>(wanted)));
}

/// Which of the units are control characters (below U+0020).
inline __m128i controlUnits(__m128i units)
{
    return _mm_cmpeq_epi16(_mm_subs_epu16(units, _mm_set1_epi16(0x1F)), _mm_setzero_si128());
}

/// Text between the quotes of a JSON string: quotes and backslashes, nothing else.
struct JsonEscapes
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(sameUnit(units, u'"'), sameUnit(units, u'\\'));
    }
    static std::u16string_view replacement(char16_t unit)
    {
        return unit == u'"' ? u"\\\"" : unit == u'\\' ? u"\\\\" : std::u16string_view();
    }
    static constexpr qsizetype kWorst = 2;
};

/// The same, and line feeds as backslash and n.
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

/// The same, and all control characters, as RFC 8259 requires.
struct JsonStrictEscapes
{
    static __m128i specials(__m128i units)
    {
        return _mm_or_si128(JsonEscapes::specials(units), controlUnits(units));
    }
    static std::u16string_view replacement(char16_t unit)
    {
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

/// Text between XML tags: less-than signs and ampersands.
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
/// less-than sign stay, although double quotes delimit the value; XmlStrictEscapes is the
/// alternative.
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
/// written as character references. Characters that XML 1.0 does not have become U+FFFD.
struct XmlStrictEscapes
{
    static __m128i specials(__m128i units)
    {
        const __m128i markup =
            _mm_or_si128(XmlTextEscapes::specials(units),
                         _mm_or_si128(sameUnit(units, u'>'), sameUnit(units, u'"')));
        const __m128i unknown =
            _mm_or_si128(sameUnit(units, u'\xFFFE'), sameUnit(units, u'\xFFFF'));
        return _mm_or_si128(_mm_or_si128(markup, controlUnits(units)), unknown);
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
        case u'\xFFFE':
        case u'\xFFFF':
            return u"\uFFFD";
        default:
            return unit < u' ' ? u"\uFFFD" : XmlTextEscapes::replacement(unit);
        }
    }
    static constexpr qsizetype kWorst = 6;
};

/// The exact number of units that `n` units become.
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

/// Copy clean units up to the first special one; returns their number, or `n`. Up to `n` units of
/// `out` are overwritten.
template <class Escapes> qsizetype copyClean(const char16_t *in, qsizetype n, char16_t *out)
{
    qsizetype i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i units = loadUnits(in + i);
        storeUnits(out + i, units);
        const int mask = _mm_movemask_epi8(Escapes::specials(units));
        if (mask != 0) {
            return i + __builtin_ctz(static_cast<unsigned>(mask)) / 2;
        }
    }
    if (i == n) {
        return n;
    }
    if (n >= 8) {
        // The last eight units overlap the ones before, which are known to be clean.
        const __m128i units = loadUnits(in + n - 8);
        storeUnits(out + n - 8, units);
        const int mask = _mm_movemask_epi8(Escapes::specials(units));
        return mask != 0 ? n - 8 + __builtin_ctz(static_cast<unsigned>(mask)) / 2 : n;
    }
    if (n >= 4) {
        const __m128i first = loadFourUnits(in);
        const __m128i last = loadFourUnits(in + n - 4);
        storeFourUnits(out, first);
        storeFourUnits(out + n - 4, last);
        const __m128i both = _mm_unpacklo_epi64(first, last);
        if (_mm_movemask_epi8(Escapes::specials(both)) == 0) {
            return n;
        }
    }
    for (; i < n && Escapes::replacement(in[i]).empty(); ++i) {
        out[i] = in[i];
    }
    return i;
}

} // namespace detail

/// Escape `n` units into `out`, which has room for kWorst times as many; returns the end.
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
