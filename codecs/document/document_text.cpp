// Characters of a text (XML 1.0, 2.2, 2.4 and 2.11; ECMA-376 part 1, 17.3.3.1: br):
//
//   &  &amp;     <  &lt;     ]]>  ]]&gt;     "  &quot; (attributes)
//   CR LF, CR, LF, \n       <w:br/>, CR or &#10;, see TextRules
//   U+0000 to U+001F but TAB, LF and CR; U+FFFE, U+FFFF, a lone surrogate    U+FFFD
#include "codecs/document/document_text.h"

#include "base/utf.h"

#include <QChar>

#include <emmintrin.h>

#include <cstring>

namespace corvanta::document {

namespace {

/// Copy a text that ends with NUL; returns the end in `out`.
char *put(char *out, const char *text)
{
    const size_t n = std::strlen(text);
    std::memcpy(out, text, n);
    return out + n;
}

constexpr qsizetype kMaxBytesPerUnit = 7; // <w:br/>
constexpr qsizetype kSlackBytes = 8;      // copyPlain() writes that many at a time
constexpr char kBreak[] = "<w:br/>";
constexpr char kClosingBreak[] = "</w:t><w:br/><w:t xml:space=\"preserve\">";

/// The markup of a line break; counts the one that is inside a text element. A slide takes the
/// character itself; an attribute needs a reference, because readers turn its line ends into spaces
/// (XML 1.0, 3.3.3).
const char *lineBreak(const TextRules &rules, TextCounts *counts)
{
    switch (rules.place) {
    case TextPlace::Word:
        counts->innerBreaks += rules.closesText ? 0 : 1;
        return rules.closesText ? kClosingBreak : kBreak;
    case TextPlace::Slide:
        return "\r";
    case TextPlace::Attribute:
        break;
    }
    return "&#10;";
}

/// Copy the ASCII units before the first one that may need more, eight at a time; returns their
/// number. Up to eight bytes after them are overwritten.
qsizetype copyPlain(const char16_t *in, qsizetype n, char *out)
{
    const auto same = [](__m128i units, char wanted) {
        return _mm_cmpeq_epi16(units, _mm_set1_epi16(wanted));
    };
    qsizetype i = 0;
    for (; i + 8 <= n; i += 8) {
        const __m128i units = _mm_loadu_si128(reinterpret_cast<const __m128i *>(in + i));
        // Compared as signed: units from 0x8000 on count as low.
        const __m128i odd = _mm_or_si128(_mm_cmplt_epi16(units, _mm_set1_epi16(32)),
                                         _mm_cmpgt_epi16(units, _mm_set1_epi16(0x7F)));
        const __m128i markup = _mm_or_si128(
            _mm_or_si128(same(units, '<'), same(units, '>')),
            _mm_or_si128(_mm_or_si128(same(units, '&'), same(units, '"')), same(units, '\\')));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(out + i), _mm_packus_epi16(units, units));
        const int mask = _mm_movemask_epi8(_mm_or_si128(odd, markup));
        if (mask != 0) {
            return i + __builtin_ctz(static_cast<unsigned>(mask)) / 2;
        }
    }
    return i;
}

/// Writes the units of one text that are not plain.
class Escaper
{
public:
    Escaper(QStringView text, const TextRules &rules, TextCounts *counts)
        : m_text(text)
        , m_rules(rules)
        , m_counts(counts)
    {
    }

    /// Write the character at `*at`, with the units that belong to it, and move `*at` past them.
    char *putOne(qsizetype *at, char *out)
    {
        const char16_t unit = m_text[(*at)++].unicode();
        switch (unit) {
        case u'&':
            return put(out, "&amp;");
        case u'<':
            return put(out, "&lt;");
        case u'>':
            return put(out, endsSection(*at) ? "&gt;" : ">");
        case u'"':
            return put(out, m_rules.place == TextPlace::Attribute ? "&quot;" : "\"");
        case u'\\':
            return putBackslash(at, out);
        case u'\r':
        case u'\n':
            return putLineEnd(unit, at, out);
        default:
            return putCharacter(unit, at, out);
        }
    }

private:
    bool has(qsizetype at, char16_t unit) const
    {
        return at < m_text.size() && m_text[at].unicode() == unit;
    }
    /// Whether the ">" before `at` follows "]]".
    bool endsSection(qsizetype at) const
    {
        return at >= 3 && m_text[at - 2] == u']' && m_text[at - 3] == u']';
    }
    char *putBackslash(qsizetype *at, char *out)
    {
        if (m_rules.breaksAtBackslashN && has(*at, u'n')) {
            ++*at;
            return put(out, lineBreak(m_rules, m_counts));
        }
        *out++ = '\\';
        return out;
    }
    char *putLineEnd(char16_t unit, qsizetype *at, char *out)
    {
        const bool isWord = m_rules.place == TextPlace::Word;
        if (m_rules.place == TextPlace::Slide || (isWord && !m_rules.breaksAtLineEnds)) {
            *out++ = static_cast<char>(unit);
            return out;
        }
        *at += unit == u'\r' && has(*at, u'\n') ? 1 : 0;
        return put(out, lineBreak(m_rules, m_counts));
    }
    char *putCharacter(char16_t unit, qsizetype *at, char *out)
    {
        if (QChar::isHighSurrogate(unit) && *at < m_text.size() && m_text[*at].isLowSurrogate()) {
            return putUtf8(QChar::surrogateToUcs4(unit, m_text[(*at)++].unicode()), out);
        }
        return putUnit(unit, out);
    }
    /// A unit that is a character of its own, or one that XML does not allow.
    char *putUnit(char16_t unit, char *out)
    {
        const bool isUnknown =
            (unit < 32 && unit != u'\t') || unit >= 0xFFFE || QChar::isSurrogate(unit);
        m_counts->replaced += isUnknown ? 1 : 0;
        return putUtf8(isUnknown ? kReplacementCharacter : unit, out);
    }

    QStringView m_text;
    const TextRules &m_rules;
    TextCounts *m_counts;
};

} // namespace

qsizetype roomForText(QStringView text, const TextRules &rules)
{
    const qsizetype breaks =
        rules.closesText ? text.count(u'\r') + text.count(u'\n') + text.count(u'\\') : 0;
    return text.size() * kMaxBytesPerUnit + breaks * qsizetype(sizeof kClosingBreak) + kSlackBytes;
}

char *putText(QStringView text, const TextRules &rules, char *out, TextCounts *counts)
{
    Escaper escaper(text, rules, counts);
    const char16_t *const units = text.utf16();
    for (qsizetype at = 0; at < text.size();) {
        const qsizetype plain = copyPlain(units + at, text.size() - at, out);
        at += plain;
        out += plain;
        if (at < text.size()) {
            out = escaper.putOne(&at, out);
        }
    }
    return out;
}

QByteArray documentText(QStringView text, const TextRules &rules, TextCounts *counts)
{
    QByteArray out(roomForText(text, rules), Qt::Uninitialized);
    const char *const end = putText(text, rules, out.data(), counts);
    out.truncate(end - out.constData());
    return out;
}

QByteArray withoutBreaks(QByteArray text)
{
    return text.replace(kClosingBreak, "\n").replace(kBreak, "\n");
}

} // namespace corvanta::document
