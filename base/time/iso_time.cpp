// The forms (ISO 8601, the extended format), each of fixed width but for the fraction:
//
//   2026-01-31            date: 10 units
//   04:30                 time: 5 units
//   04:30:05              8 units
//   04:30:05.25           a point and 1 to 9 digits
//   2026-01-31T04:30Z     date, "T" or a space, a time, and perhaps "Z"
#include "base/time/iso_time.h"

namespace corvanta {

namespace {

constexpr size_t kDateUnits = 10;  // 2026-01-31
constexpr size_t kMinuteUnits = 5; // 04:30
constexpr size_t kSecondUnits = 8; // 04:30:05
constexpr size_t kMaxFraction = 9; // digits
constexpr qint64 kNanoseconds = 1'000'000'000;

/// The number of two digits at `at`. Anything else gives a number that no field can have.
unsigned twoDigits(const char16_t *at)
{
    constexpr unsigned kInvalid = 1000;
    const unsigned high = at[0] - unsigned{u'0'};
    const unsigned low = at[1] - unsigned{u'0'};
    return high <= 9 && low <= 9 ? high * 10 + low : kInvalid;
}

/// In the Gregorian calendar, also before it was introduced.
bool isLeapYear(unsigned year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// `month` from 1.
unsigned daysOf(unsigned year, unsigned month)
{
    constexpr unsigned kDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return kDays[month - 1] + (month == 2 && isLeapYear(year) ? 1 : 0);
}

/// Days since 1970-01-01 of a valid date. Years begin in March, so that the leap day is their last.
qint32 dayNumber(unsigned year, unsigned month, unsigned day)
{
    constexpr qint32 kDaysToEpoch = 719468; // from 0000-03-01
    const unsigned shiftedYear = month <= 2 ? year - 1 : year;
    const unsigned shiftedMonth = month <= 2 ? month + 9 : month - 3;
    const unsigned dayOfYear = (153 * shiftedMonth + 2) / 5 + day - 1;
    const unsigned leapDays = shiftedYear / 4 - shiftedYear / 100 + shiftedYear / 400;
    return static_cast<qint32>(365 * shiftedYear + leapDays + dayOfYear) - kDaysToEpoch;
}

/// The nanoseconds of the digits after a decimal point.
std::optional<qint64> parseFraction(std::u16string_view digits)
{
    if (digits.empty() || digits.size() > kMaxFraction) {
        return std::nullopt;
    }
    qint64 value = 0;
    for (size_t i = 0; i < kMaxFraction; ++i) {
        const unsigned digit = i < digits.size() ? digits[i] - unsigned{u'0'} : 0;
        if (digit > 9) {
            return std::nullopt;
        }
        value = value * 10 + digit;
    }
    return value;
}

} // namespace

std::optional<qint32> parseIsoDate(std::u16string_view text)
{
    if (text.size() != kDateUnits || text[4] != u'-' || text[7] != u'-') {
        return std::nullopt;
    }
    const unsigned century = twoDigits(text.data());
    const unsigned rest = twoDigits(text.data() + 2);
    const unsigned month = twoDigits(text.data() + 5);
    const unsigned day = twoDigits(text.data() + 8);
    const unsigned year = century * 100 + rest;
    const bool isDate = century < 100 && rest < 100 && year > 0 && month >= 1 && month <= 12 &&
                        day >= 1 && day <= daysOf(year, month);
    return isDate ? std::optional(dayNumber(year, month, day)) : std::nullopt;
}

std::optional<qint64> parseIsoTime(std::u16string_view text)
{
    const bool hasSeconds = text.size() >= kSecondUnits;
    if ((text.size() != kMinuteUnits && !hasSeconds) || text[2] != u':' ||
        (hasSeconds && text[5] != u':')) {
        return std::nullopt;
    }
    const unsigned hours = twoDigits(text.data());
    const unsigned minutes = twoDigits(text.data() + 3);
    const unsigned seconds = hasSeconds ? twoDigits(text.data() + 6) : 0;
    if (hours >= 24 || minutes >= 60 || seconds >= 60) {
        return std::nullopt;
    }
    const qint64 whole = (qint64(hours) * 3600 + qint64(minutes) * 60 + seconds) * kNanoseconds;
    if (text.size() <= kSecondUnits) {
        return whole;
    }
    const auto fraction =
        text[kSecondUnits] == u'.' ? parseFraction(text.substr(kSecondUnits + 1)) : std::nullopt;
    return fraction ? std::optional(whole + *fraction) : std::nullopt;
}

std::optional<IsoDateTime> parseIsoDateTime(std::u16string_view text)
{
    const auto day = parseIsoDate(text.substr(0, kDateUnits));
    if (!day || text.size() <= kDateUnits) {
        return day ? std::optional(IsoDateTime{*day}) : std::nullopt;
    }
    const char16_t separator = text[kDateUnits];
    text.remove_prefix(kDateUnits + 1);
    const bool isUtc = text.ends_with(u'Z');
    text.remove_suffix(isUtc ? 1 : 0);
    const auto time = separator == u'T' || separator == u' ' ? parseIsoTime(text) : std::nullopt;
    return time ? std::optional(IsoDateTime{*day, *time, isUtc}) : std::nullopt;
}

} // namespace corvanta
