#include "actions/read_csv/csv_dates.h"

#include "base/utf.h"

#include <QDate>
#include <QTime>

#include <algorithm>
#include <array>

namespace corvanta {

namespace {

/// Whether a format has one of `letters` outside of apostrophes.
bool hasField(const QString &format, QStringView letters)
{
    bool isQuoted = false;
    return std::any_of(format.begin(), format.end(), [&](QChar c) {
        isQuoted = isQuoted != (c == u'\'');
        return !isQuoted && letters.contains(c);
    });
}

/// `digits` digits, with zeros before the number.
char16_t *putNumber(int value, int digits, char16_t *out)
{
    for (int i = digits - 1; i >= 0; --i, value /= 10) {
        out[i] = static_cast<char16_t>(u'0' + value % 10);
    }
    return out + digits;
}

char16_t *putDate(QDate date, char16_t *out)
{
    out = putNumber(date.year(), 4, out);
    *out++ = u'-';
    out = putNumber(date.month(), 2, out);
    *out++ = u'-';
    return putNumber(date.day(), 2, out);
}

/// Milliseconds are written if there are some, so that whole seconds stay short.
char16_t *putTime(QTime time, char16_t *out)
{
    out = putNumber(time.hour(), 2, out);
    *out++ = u':';
    out = putNumber(time.minute(), 2, out);
    *out++ = u':';
    out = putNumber(time.second(), 2, out);
    if (time.msec() != 0) {
        *out++ = u'.';
        out = putNumber(time.msec(), 3, out);
    }
    return out;
}

} // namespace

/// A format with both parts gives a date with a time, any other one a date or a time.
CsvDates::CsvDates(const QString &format)
    : m_parser(format, QLocale::c(), false)
    , m_hasDate(hasField(format, u"yMd"))
    , m_hasTime(hasField(format, u"hHmsz"))
    , m_hasShortYears(sheet::hasShortYears(format))
{
}

/// The parser caches its results, because files repeat their dates.
int CsvDates::toIso(std::u16string_view text, char16_t *out)
{
    constexpr qint64 kMsPerDay = 86400000;
    const std::optional<qint64> ms = m_parser.msSince1970(text);
    if (!ms) {
        return 0;
    }
    const qint64 inDay = (*ms % kMsPerDay + kMsPerDay) % kMsPerDay;
    QDate date = QDate::fromJulianDay(QDate(1970, 1, 1).toJulianDay() + (*ms - inDay) / kMsPerDay);
    if (m_hasShortYears && date.year() < 1969) {
        date = date.addYears(100); // the parser has read it as a year of the 20th century
    }
    if (date.year() < 0 || date.year() > 9999) {
        return 0;
    }
    char16_t *at = m_hasDate ? putDate(date, out) : out;
    if (m_hasDate && m_hasTime) {
        *at++ = u'T';
    }
    at = m_hasTime ? putTime(QTime::fromMSecsSinceStartOfDay(static_cast<int>(inDay)), at) : at;
    return static_cast<int>(at - out);
}

int CsvDates::toIso(std::string_view text, char16_t *out)
{
    constexpr size_t kMaxBytes = 100; // no date is longer
    std::array<char16_t, kMaxBytes> units{};
    const qsizetype n =
        text.size() <= kMaxBytes
            ? utf8ToUtf16(text.data(), static_cast<qsizetype>(text.size()), units.data())
            : 0;
    return toIso(std::u16string_view(units.data(), static_cast<size_t>(n)), out);
}

} // namespace corvanta
