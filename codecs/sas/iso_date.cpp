// The texts that are stored as numbers (ISO 8601), each from its beginning to its end:
//
//   Days      yyyy-mm-dd                            days since 1960-01-01; a time must be 00:00
//   Seconds   yyyy-mm-dd[(T| )hh:mm[:ss[.f]][Z]]    seconds since 1960-01-01 00:00
//   Time      [-]h..h:mm[:ss[.f]]                   seconds; 2 to 6 digits of hours
//
// The fraction .f has 1 to 9 digits. The zone Z is accepted and not stored.
#include "codecs/sas/iso_date.h"

#include <QDate>

namespace corvanta::sas {

namespace {

constexpr int kSecondsPerMinute = 60;
constexpr int kSecondsPerHour = 3600;
constexpr int kSecondsPerDay = 86'400;

/// Reads a text from its beginning. After a mistake isGood is false, and numbers are not used.
struct Cursor
{
    std::u16string_view rest;
    bool isGood = true;

    bool accept(char16_t c)
    {
        const bool isNext = !rest.empty() && rest.front() == c;
        rest.remove_prefix(isNext ? 1 : 0);
        return isNext;
    }
    void expect(char16_t c) { isGood = accept(c) && isGood; }
    /// A number of `least` to `most` digits.
    int number(size_t least, size_t most)
    {
        int value = 0;
        size_t n = 0;
        for (; n < most && n < rest.size() && rest[n] >= u'0' && rest[n] <= u'9'; ++n) {
            value = value * 10 + (rest[n] - u'0');
        }
        rest.remove_prefix(n);
        isGood = isGood && n >= least;
        return value;
    }
    /// A number below `limit` of two digits.
    int part(int limit)
    {
        const int value = number(2, 2);
        isGood = isGood && value < limit;
        return value;
    }
};

/// The digits after a decimal point.
double fraction(Cursor &in)
{
    constexpr size_t kMaxDigits = 9;
    const size_t before = in.rest.size();
    const double digits = in.number(1, kMaxDigits);
    double unit = 1;
    for (size_t n = before - in.rest.size(); n > 0; --n) {
        unit *= 10;
    }
    return digits / unit; // one rounding
}

/// Seconds of hh:mm, hh:mm:ss or hh:mm:ss.fff.
double clock(Cursor &in, size_t hourDigits)
{
    const int hours = in.number(2, hourDigits);
    in.expect(u':');
    const int minutes = in.part(60);
    const bool hasSeconds = in.accept(u':');
    const int seconds = hasSeconds ? in.part(60) : 0;
    const double part = hasSeconds && in.accept(u'.') ? fraction(in) : 0;
    return hours * double(kSecondsPerHour) + minutes * kSecondsPerMinute + seconds + part;
}

/// Days since 1960-01-01.
qint64 day(Cursor &in)
{
    constexpr qint64 kJulianDay1960 = 2'436'935;
    const int year = in.number(4, 4);
    in.expect(u'-');
    const int month = in.number(2, 2);
    in.expect(u'-');
    const QDate date(year, month, in.number(2, 2));
    in.isGood = in.isGood && date.isValid();
    return in.isGood ? date.toJulianDay() - kJulianDay1960 : 0;
}

double time(Cursor &in)
{
    constexpr size_t kMaxHourDigits = 6;
    const bool isNegative = in.accept(u'-');
    const double seconds = clock(in, kMaxHourDigits);
    return isNegative ? -seconds : seconds;
}

/// The time of day after a date; 0 without one.
double timeOfDay(Cursor &in)
{
    if (in.rest.empty()) {
        return 0;
    }
    in.isGood = (in.accept(u'T') || in.accept(u' ')) && in.isGood;
    const double seconds = clock(in, 2);
    in.accept(u'Z'); // SAS has no zones
    in.isGood = in.isGood && seconds < kSecondsPerDay;
    return seconds;
}

} // namespace

std::optional<double> dateValue(std::u16string_view text, DateUnit unit)
{
    Cursor in{text};
    double value = 0;
    if (unit == DateUnit::Time) {
        value = time(in);
    } else {
        const auto days = static_cast<double>(day(in));
        const double seconds = timeOfDay(in);
        in.isGood = in.isGood && (unit == DateUnit::Seconds || seconds == 0);
        value = unit == DateUnit::Days ? days : days * kSecondsPerDay + seconds;
    }
    return in.isGood && in.rest.empty() ? std::optional(value) : std::nullopt;
}

} // namespace corvanta::sas
