// Dates and times as ISO 8601 text, from the serials of cells (ECMA-376 part 1, 18.17.4.1).
//
//   serial      form        calendar from 1900      calendar from 1904
//   0.25        Time        06:00:00                06:00:00
//   45000       Date        2023-03-15              2027-03-16
//   45000.5     DateTime    2023-03-15T12:00:00     2027-03-16T12:00:00
//   1.5         Duration    36:00:00                36:00:00
//
// The calendar from 1900 counts a day 1900-02-29, serial 60, which never was.
#include "codecs/sheet/date_text.h"

#include "base/number.h"
#include "codecs/sheet/date_parser.h"

#include <QDate>
#include <QTime>

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanta::sheet {

namespace {

constexpr qint64 kDayMs = 86'400'000;
/// Days from serial 0 of the calendar from 1900 to that of 1904.
constexpr int kDaysTo1904 = 1462;
/// 9999-12-31 in the calendar from 1900.
constexpr qint64 kLastDay = 2'958'465;
/// 1899-12-30, serial 0 as it counts after the day 60 that never was.
constexpr qint64 kJulianDay0 = 2'415'019;
constexpr qint64 kFictitiousDay = 60;

/// Text in ASCII, built in pieces.
class Text
{
public:
    /// `value`, with zeros before it up to `digits` digits.
    void number(qint64 value, int digits)
    {
        std::array<char, kNumberChars> text{};
        const int n = putUInt(static_cast<quint64>(value), text.data());
        for (int i = n; i < digits; ++i) {
            put('0');
        }
        std::copy_n(text.data(), n, m_text.data() + m_size);
        m_size += n;
    }
    /// `separator`, and the value after it.
    void field(char separator, qint64 value, int digits)
    {
        put(separator);
        number(value, digits);
    }
    void put(char c) { m_text[static_cast<size_t>(m_size++)] = c; }
    int copyTo(char16_t *out) const
    {
        std::copy_n(m_text.data(), m_size, out);
        return m_size;
    }

private:
    std::array<char, kDateTextUnits> m_text{};
    int m_size = 0;
};

/// The date of a serial of the calendar from 1900.
void putDay(qint64 day, Text *text)
{
    int year = 1900;
    int month = 2;
    int dayOfMonth = 29;
    if (day != kFictitiousDay) {
        const QDate date = QDate::fromJulianDay(kJulianDay0 + day + (day < kFictitiousDay ? 1 : 0));
        date.getDate(&year, &month, &dayOfMonth);
    }
    text->number(year, 4);
    text->field('-', month, 2);
    text->field('-', dayOfMonth, 2);
}

/// The seconds of a time, with milliseconds only where there are some.
void putSeconds(qint64 ms, Text *text)
{
    text->field(':', ms / 1000 % 60, 2);
    if (ms % 1000 != 0) {
        text->field('.', ms % 1000, 3);
    }
}

/// `hourDigits`: 2, or 1 for a duration.
void putTime(qint64 ms, int hourDigits, Text *text)
{
    text->number(ms / 3'600'000, hourDigits);
    text->field(':', ms / 60'000 % 60, 2);
    putSeconds(ms, text);
}

/// A duration has a sign, and as many hours as it needs instead of days.
int putDuration(qint64 ms, char16_t *out)
{
    Text text;
    if (ms < 0) {
        text.put('-');
    }
    putTime(std::abs(ms), 1, &text);
    return text.copyTo(out);
}

} // namespace

int putDateText(NumberForm form, double serial, bool uses1904, char16_t *out)
{
    if (form == NumberForm::General || !(std::abs(serial) <= static_cast<double>(kLastDay + 1))) {
        return 0;
    }
    qint64 ms = std::llround(serial * static_cast<double>(kDayMs));
    if (form == NumberForm::Duration) {
        return putDuration(ms, out);
    }
    // A time of day has no date to which the last half of a millisecond could be rounded.
    if (serial < 1 && (form == NumberForm::Time || !uses1904)) {
        ms = std::min(ms, kDayMs - 1);
    }
    const qint64 day = ms / kDayMs + (uses1904 ? kDaysTo1904 : 0);
    if (ms < 0 || day > kLastDay) {
        return 0;
    }
    Text text;
    const qint64 timeMs = ms % kDayMs;
    // The calendar from 1900 has no day 0; that of 1904 has one.
    if (day == 0 || (form == NumberForm::Time && ms < kDayMs)) {
        putTime(timeMs, 2, &text);
        return text.copyTo(out);
    }
    putDay(day, &text);
    if (timeMs != 0 || form == NumberForm::DateTime) {
        text.put('T');
        putTime(timeMs, 2, &text);
    }
    return text.copyTo(out);
}

std::optional<double> serialOfIsoText(std::u16string_view text, bool uses1904)
{
    if (text.find(u'-') == std::u16string_view::npos) {
        const QTime time =
            QTime::fromString(QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size())),
                              Qt::ISODateWithMs);
        return time.isValid()
                   ? std::optional(time.msecsSinceStartOfDay() / static_cast<double>(kDayMs))
                   : std::nullopt;
    }
    auto serial = DateParser::iso(true).serial(text);
    if (serial && uses1904) {
        serial = *serial - kDaysTo1904;
    }
    return serial;
}

} // namespace corvanta::sheet
