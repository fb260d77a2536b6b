// Serials of dates (ECMA-376 part 1, 18.17.4.1): days since 1899-12-30, with the time as fraction.
//
//   1899-12-31        1      below 61 the month fix subtracts 1: 1900-01-01 becomes 1
//   1900-03-01       61      the same with and without the fix
//   1970-01-01    25569      2,209,161,600,000 ms
#include "codecs/sheet/date_parser.h"

#include "base/time/iso_time.h"

#include <QRegularExpression>

#include <algorithm>
#include <array>

namespace corvanta::sheet {

namespace {

/// Whether a date format asks for a time zone: a "t" outside of apostrophes.
bool hasTimeZone(const QString &format)
{
    bool isQuoted = false;
    return std::any_of(format.begin(), format.end(), [&isQuoted](QChar c) {
        isQuoted = isQuoted != (c == u'\'');
        return c == u't' && !isQuoted;
    });
}

/// The number in the `digits` characters at `at`; -1 when one of them is not a digit.
int digitsAt(const char16_t *at, int digits)
{
    int value = 0;
    for (int i = 0; i < digits; ++i) {
        const int digit = at[i] - u'0';
        if (digit < 0 || digit > 9) {
            return -1;
        }
        value = value * 10 + digit;
    }
    return value;
}

qint64 toMs(QDate date, QTime time)
{
    return QDateTime(date, time, Qt::UTC).toMSecsSinceEpoch();
}

/// The time in what follows the date in a text of ISO 8601; invalid when it is not a time. A zone
/// is read and left out: cells have no zone.
QTime isoTime(QStringView text)
{
    static const QRegularExpression kTime(
        QStringLiteral("^[Tt ](\\d\\d:\\d\\d(?::\\d\\d(?:[.,]\\d+)?)?)"
                       "(?:[Zz]|[+-]\\d\\d(?::?\\d\\d)?)?$"));
    return QTime::fromString(kTime.match(text.toString()).captured(1), Qt::ISODateWithMs);
}

/// Milliseconds since 1970-01-01 of the usual forms, rounded within the day.
std::optional<qint64> usualIsoMs(std::u16string_view text)
{
    constexpr qint64 kMsPerDay = 86'400'000;
    constexpr qint64 kNanoseconds = 1'000'000;
    const auto moment = parseIsoDateTime(text);
    if (!moment) {
        return std::nullopt;
    }
    const qint64 ms = (moment->nanoseconds + kNanoseconds / 2) / kNanoseconds;
    return moment->day * kMsPerDay + std::min(ms, kMsPerDay - 1);
}

/// Milliseconds since 1970-01-01 of a date, or a date and time, in the form of ISO 8601.
std::optional<qint64> isoMs(QStringView text)
{
    constexpr qsizetype kDateUnits = 10;
    const QDate date = QDate::fromString(text.left(kDateUnits), Qt::ISODate);
    if (!date.isValid() || text.size() <= kDateUnits) {
        return date.isValid() ? std::optional(toMs(date, QTime(0, 0))) : std::nullopt;
    }
    const QTime time = isoTime(text.sliced(kDateUnits));
    return time.isValid() ? std::optional(toMs(date, time)) : std::nullopt;
}

} // namespace

bool hasShortYears(const QString &format)
{
    constexpr int kLongYear = 4;
    bool isQuoted = false;
    int run = 0; // letters "y" in a row; Qt takes four or two
    bool isShort = false;
    for (const QChar c : format + u' ') {
        isQuoted = isQuoted != (c == u'\'');
        if (c == u'y' && !isQuoted) {
            ++run;
        } else {
            isShort = isShort || run % kLongYear >= 2;
            run = 0;
        }
    }
    return isShort;
}

DateParser DateParser::iso(bool monthFix)
{
    DateParser parser(QStringLiteral("yyyy-MM-dd"), QLocale::c(), monthFix);
    parser.m_isIso = true;
    return parser;
}

DateParser::DateParser(const QString &format, const QLocale &locale, bool monthFix)
    : m_format(format)
    , m_locale(locale)
    , m_monthFix(monthFix)
{
    compile();
    if (!hasTimeZone(format)) {
        // Without a zone Qt uses local time, in which the hours that daylight saving skips are
        // invalid.
        m_format.prepend(QStringLiteral("t|"));
        m_zoneText = QStringLiteral("UTC|");
    }
}

/// The token for `run`, a run of equal characters of a format; std::nullopt for one that only Qt
/// understands. The token of a literal is used once for each character of its run.
std::optional<DateParser::Token> DateParser::tokenOf(QStringView run)
{
    struct KnownField
    {
        QStringView text;
        Field field;
    };
    static const KnownField kFields[] = {{u"yyyy", Field::Year}, {u"MM", Field::Month},
                                         {u"dd", Field::Day},    {u"hh", Field::Hour},
                                         {u"HH", Field::Hour},   {u"mm", Field::Minute},
                                         {u"ss", Field::Second}, {u"zzz", Field::Millisecond}};
    for (const KnownField &known : kFields) {
        if (run == known.text) {
            return Token{known.field, static_cast<quint8>(run.size()), 0};
        }
    }
    constexpr QStringView kLiterals = u"-/.:, T_";
    return kLiterals.contains(run.front())
               ? std::optional(Token{Field::Literal, 1, run.front().unicode()})
               : std::nullopt;
}

/// Compiles a format of fixed-width numbers and literals. Leaves m_tokens empty for any other.
void DateParser::compile()
{
    std::vector<Token> tokens;
    qsizetype run = 1;
    for (qsizetype i = 0; i < m_format.size(); i += run) {
        for (run = 1; i + run < m_format.size() && m_format[i + run] == m_format[i];) {
            ++run;
        }
        const auto token = tokenOf(QStringView(m_format).mid(i, run));
        if (!token) {
            return;
        }
        const bool isLiteral = token->field == Field::Literal;
        tokens.insert(tokens.end(), isLiteral ? static_cast<size_t>(run) : 1, *token);
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
        const bool isLiteral = token.field == Field::Literal;
        const int value = isLiteral ? 0 : digitsAt(at, token.digits);
        if (value < 0 || (isLiteral && *at != token.literal)) {
            return std::nullopt;
        }
        values[static_cast<size_t>(token.field)] = value;
        at += token.digits;
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
    constexpr qsizetype kMaxKnown = 10000;
    const QString key(reinterpret_cast<const QChar *>(text.data()),
                      static_cast<qsizetype>(text.size()));
    const auto found = m_known.find(key);
    if (found != m_known.end()) {
        return found->second;
    }
    const std::optional<qint64> ms = m_isIso ? isoMs(key) : parsedMs(key);
    // Clearing is enough to bound the memory: a table with so many dates repeats few of them.
    if (m_known.size() >= kMaxKnown) {
        m_known.clear();
    }
    m_known.emplace(key, ms);
    return ms;
}

std::optional<qint64> DateParser::parsedMs(const QString &text) const
{
    const QDateTime parsed = m_locale.toDateTime(m_zoneText + text, m_format);
    return parsed.isValid() ? std::optional(toMs(parsed.date(), parsed.time())) : std::nullopt;
}

/// The fast way first; Qt also reads texts that are shorter or longer than the format.
std::optional<qint64> DateParser::msSince1970(std::u16string_view text)
{
    const std::optional<qint64> ms = m_isIso            ? usualIsoMs(text)
                                     : m_tokens.empty() ? std::nullopt
                                                        : fixedWidthMs(text);
    return ms ? ms : slowMs(text);
}

std::optional<double> DateParser::serial(std::u16string_view text)
{
    constexpr qint64 kMsTo1970 = 2209161600000;
    constexpr double kMsPerDay = 86400000;
    const std::optional<qint64> ms = msSince1970(text);
    if (!ms) {
        return std::nullopt;
    }
    // One division of whole milliseconds: the fraction is the nearest double to the time.
    double serial = static_cast<double>(*ms + kMsTo1970) / kMsPerDay;
    if (m_monthFix && serial < 61) {
        serial -= 1;
    }
    return serial;
}

} // namespace corvanta::sheet
