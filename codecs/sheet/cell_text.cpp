#include "codecs/sheet/cell_text.h"

#include <emmintrin.h>

#include <algorithm>
#include <cstring>

namespace corvanta::sheet {

namespace {

constexpr char kHexDigits[] = "0123456789ABCDEF";

bool isHex(char16_t unit)
{
    return (unit >= u'0' && unit <= u'9') || (unit >= u'a' && unit <= u'f') ||
           (unit >= u'A' && unit <= u'F');
}

/// Whether the underscore at text[0] starts something that reads as an escape: _xHHHH_.
bool startsEscape(const char16_t *text, qsizetype n)
{
    return n >= 7 && text[1] == u'x' && isHex(text[2]) && isHex(text[3]) && isHex(text[4]) &&
           isHex(text[5]) && text[6] == u'_';
}

char *put(char *out, const char *text, size_t n)
{
    std::memcpy(out, text, n);
    return out + n;
}

char *putUtf8(char *out, char32_t c)
{
    if (c < 0x80) {
        *out++ = static_cast<char>(c);
    } else if (c < 0x800) {
        *out++ = static_cast<char>(0xC0 | c >> 6);
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        *out++ = static_cast<char>(0xE0 | c >> 12);
        *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        *out++ = static_cast<char>(0xF0 | c >> 18);
        *out++ = static_cast<char>(0x80 | (c >> 12 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c >> 6 & 0x3F));
        *out++ = static_cast<char>(0x80 | (c & 0x3F));
    }
    return out;
}

/// One unit, or a surrogate pair, at text[0]; `*taken` units of it.
char *escapeOne(const char16_t *text, qsizetype n, char *out, int *taken)
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
        out = put(out, "_x00", 4);
        *out++ = kHexDigits[unit >> 4];
        *out++ = kHexDigits[unit & 15];
        *out++ = '_';
        return out;
    }
    if (unit == u'_' && startsEscape(text, n)) {
        return put(out, "_x005F_", 7);
    }
    if (unit == 0xFFFE) {
        *out++ = '_';
        return out;
    }
    if ((unit & 0xF800) != 0xD800) {
        return putUtf8(out, unit);
    }
    if (unit < 0xDC00 && n > 1 && (text[1] & 0xFC00) == 0xDC00) {
        *taken = 2;
        return putUtf8(out, 0x10000 + ((unit & 0x3FFU) << 10) + (text[1] & 0x3FFU));
    }
    return putUtf8(out, 0xFFFD);
}

/// Whether a date format asks for a time zone: a "t" outside of apostrophes.
bool hasTimeZone(const QString &format)
{
    bool isQuoted = false;
    return std::any_of(format.begin(), format.end(), [&isQuoted](QChar c) {
        isQuoted = isQuoted != (c == u'\'');
        return c == u't' && !isQuoted;
    });
}

int charsOf(const char *begin, const char *end, int taken)
{
    // A pair is two characters and four bytes; everything in ASCII is as many characters as bytes.
    return static_cast<uchar>(*begin) < 0x80 ? static_cast<int>(end - begin) : taken;
}

} // namespace

char *escapeText(const char16_t *text, qsizetype n, char *out)
{
    const __m128i controls =
        _mm_set1_epi16(32); // compared as signed: units from 0x8000 on count as low
    const __m128i less = _mm_set1_epi16('<');
    const __m128i ampersands = _mm_set1_epi16('&');
    const __m128i underscores = _mm_set1_epi16('_');
    const __m128i highest = _mm_set1_epi16(0x7F);
    qsizetype i = 0;
    int taken = 0;
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
        out = escapeOne(text + i, n - i, out + plain, &taken);
        i += taken;
    }
    for (; i < n; i += taken) {
        out = escapeOne(text + i, n - i, out, &taken);
    }
    return out;
}

qsizetype escapeLongText(const char16_t *text, qsizetype n, AtLimit atLimit, qsizetype mostChars,
                         const std::function<void()> &tooLong, std::vector<char> *out)
{
    out->clear();
    qsizetype chars = 0;
    int taken = 0;
    std::array<char, 16> piece{};
    for (qsizetype i = 0; i < n && chars <= mostChars; i += taken) {
        char *const end = escapeOne(text + i, n - i, piece.data(), &taken);
        const int pieceChars = charsOf(piece.data(), end, taken);
        if (chars + pieceChars >= kCellCharLimit) {
            if (atLimit == AtLimit::Crop) {
                return chars;
            }
            tooLong();
        }
        out->insert(out->end(), piece.data(), end);
        chars += pieceChars;
    }
    return chars;
}

QByteArray columnLetters(int column0)
{
    QByteArray letters;
    for (int rest = column0 + 1; rest > 0; rest = (rest - 1) / 26) {
        letters.prepend(static_cast<char>('A' + (rest - 1) % 26));
    }
    return letters;
}

std::optional<LinkText> parseLink(std::u16string_view text)
{
    constexpr std::u16string_view opening = u"URL(";
    constexpr std::u16string_view middle = u"\",\"";
    if (text.size() < 5 || text.substr(0, opening.size()) != opening) {
        return std::nullopt;
    }
    size_t between = std::u16string_view::npos;
    for (size_t p = 5; text.size() > 10 && p + 6 < text.size(); ++p) {
        if (text.substr(p, middle.size()) == middle) {
            between = p;
            break;
        }
    }
    if (text.back() == u')') {
        text.remove_suffix(1);
    }
    if (!text.empty() && text.back() == u'"') {
        text.remove_suffix(1);
    }
    if (between == std::u16string_view::npos) {
        const std::u16string_view both = text.size() > 5 ? text.substr(5) : std::u16string_view();
        return LinkText{both, both};
    }
    return LinkText{text.substr(5, between - 5), text.substr(between + middle.size())};
}

DateParser::DateParser(const QString &format, const QLocale &locale, bool monthFix)
    : m_format(format)
    , m_locale(locale)
    , m_monthFix(monthFix)
{
    compile();
    if (!hasTimeZone(format)) {
        // Without a zone Qt takes local time, where the hours that daylight saving skips are no
        // times.
        m_format.prepend(QStringLiteral("t|"));
        m_zoneText = QStringLiteral("UTC|");
    }
}

/// Understand a format of fixed-width numbers and literals; anything else is left to Qt.
void DateParser::compile()
{
    struct Known
    {
        const char16_t *text;
        Field field;
    };
    constexpr Known known[] = {{u"yyyy", Field::Year}, {u"MM", Field::Month},
                               {u"dd", Field::Day},    {u"hh", Field::Hour},
                               {u"HH", Field::Hour},   {u"mm", Field::Minute},
                               {u"ss", Field::Second}, {u"zzz", Field::Millisecond}};
    constexpr QStringView literals = u"-/.:, T_";
    std::vector<Token> tokens;
    for (qsizetype i = 0; i < m_format.size();) {
        const QChar c = m_format[i];
        qsizetype run = 1;
        while (i + run < m_format.size() && m_format[i + run] == c) {
            ++run;
        }
        const QStringView text = QStringView(m_format).mid(i, run);
        const auto *const found =
            std::find_if(std::begin(known), std::end(known),
                         [&](const Known &k) { return text == QStringView(k.text); });
        if (found != std::end(known)) {
            tokens.push_back({found->field, static_cast<quint8>(run), 0});
        } else if (literals.contains(c)) {
            tokens.insert(tokens.end(), static_cast<size_t>(run), {Field::Literal, 1, c.unicode()});
        } else {
            return;
        }
        i += run;
    }
    m_tokens = std::move(tokens);
    for (const Token &token : m_tokens) {
        m_width += token.digits;
    }
}

std::optional<qint64> DateParser::fixedWidthMs(std::u16string_view text) const
{
    if (text.size() != m_width) {
        return std::nullopt;
    }
    // Fields that the format lacks have Qt's defaults.
    std::array<int, 8> values{0, 1900, 1, 1, 0, 0, 0, 0};
    const char16_t *at = text.data();
    for (const Token &token : m_tokens) {
        if (token.field == Field::Literal) {
            if (*at++ != token.literal) {
                return std::nullopt;
            }
            continue;
        }
        int value = 0;
        for (int i = 0; i < token.digits; ++i) {
            const int digit = *at++ - u'0';
            if (digit < 0 || digit > 9) {
                return std::nullopt;
            }
            value = value * 10 + digit;
        }
        values[static_cast<size_t>(token.field)] = value;
    }
    const QDate date(values[1], values[2], values[3]);
    const QTime time(values[4], values[5], values[6], values[7]);
    if (!date.isValid() || !time.isValid()) {
        return std::nullopt;
    }
    constexpr qint64 kMsPerDay = 86400000;
    return (date.toJulianDay() - QDate(1970, 1, 1).toJulianDay()) * kMsPerDay +
           time.msecsSinceStartOfDay();
}

std::optional<qint64> DateParser::slowMs(std::u16string_view text)
{
    constexpr qsizetype kMostKnown = 10000;
    const QString key(reinterpret_cast<const QChar *>(text.data()),
                      static_cast<qsizetype>(text.size()));
    const auto found = m_known.constFind(key);
    if (found != m_known.constEnd()) {
        return *found;
    }
    const QDateTime parsed = m_locale.toDateTime(m_zoneText + key, m_format);
    std::optional<qint64> ms;
    if (parsed.isValid()) {
        ms = QDateTime(parsed.date(), parsed.time(), Qt::UTC).toMSecsSinceEpoch();
    }
    if (m_known.size() >= kMostKnown) {
        m_known.clear();
    }
    m_known.insert(key, ms);
    return ms;
}

std::optional<double> DateParser::serial(std::u16string_view text)
{
    constexpr qint64 kMsTo1970 = 2209161600000;
    constexpr double kMsPerDay = 86400000;
    std::optional<qint64> ms;
    if (!m_tokens.empty()) {
        ms = fixedWidthMs(text);
    }
    if (!ms) {
        ms = slowMs(text);
    }
    if (!ms) {
        return std::nullopt;
    }
    double serial = static_cast<double>(*ms + kMsTo1970) / kMsPerDay;
    if (m_monthFix && serial < 61) {
        serial -= 1;
    }
    return serial < 1 ? std::nullopt : std::optional(serial);
}

} // namespace corvanta::sheet
