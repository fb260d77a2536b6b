// codecs/compose/escape.h
// Copies text into a composed file while replacing the characters that the file's syntax reserves.
//
// Most cells hold none of them: eight units are compared at a time, and what is clean is copied as
// it is. Where an escape goes is decided by an `Escapes` type:
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

/// An XML attribute. Kept as required: an apostrophe becomes &quot; while a double quote and a
/// less-than sign stay, although double quotes delimit the value.
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

/// Units that escaping `n` units gives, exactly.
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

/// Copy clean units; returns how many there are in front of the first special one, or `n`. `out`
/// may be written up to `n` units.
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
        // The last eight again: all before the rest are known to be clean.
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

/// Escape `n` units into `out`, which has room for kWorst times as many; returns the place behind.
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
