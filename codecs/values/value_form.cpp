// A number:
//
//     [-] digits [point digits] [e [sign] digits]     12  -0.5  .5  1e3
//
// Digits before the point have no leading zero. Significant digits are counted from the first one
// that is not 0; zeros at the end of a fraction do not count, because they change no value.
#include "codecs/values/value_form.h"

#include <algorithm>

namespace corvanta::values {

namespace {

constexpr Form kText{};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

const char *skipDigits(const char *at, const char *end)
{
    while (at != end && isDigit(*at)) {
        ++at;
    }
    return at;
}

/// The first of the digits [at, end) that is not 0.
const char *skipZeros(const char *at, const char *end)
{
    return std::find_if(at, end, [](char c) { return c != '0'; });
}

// ---- Dates and times.

/// The number at the two digits `at`; 100 if they are not digits.
int twoDigits(const char *at)
{
    constexpr int kNone = 100;
    return isDigit(at[0]) && isDigit(at[1]) ? (at[0] - '0') * 10 + (at[1] - '0') : kNone;
}

int daysOfMonth(int year, int month)
{
    constexpr int kFebruary = 2;
    const bool isLeap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
    const bool isShort = month == 4 || month == 6 || month == 9 || month == 11;
    return month == kFebruary ? (isLeap ? 29 : 28) : isShort ? 30 : 31;
}

constexpr size_t kDateChars = 10; // 2026-01-31

/// A day from the year 1 to the year 9999.
bool isDate(std::string_view text)
{
    if (text.size() != kDateChars || text[4] != '-' || text[7] != '-') {
        return false;
    }
    const int century = twoDigits(text.data());
    const int yearOfCentury = twoDigits(text.data() + 2);
    const int month = twoDigits(text.data() + 5);
    const int day = twoDigits(text.data() + 8);
    const int year = century * 100 + yearOfCentury;
    return std::max(century, yearOfCentury) < 100 && year > 0 && month >= 1 && month <= 12 &&
           day >= 1 && day <= daysOfMonth(year, month);
}

/// The fraction of a second, with its point: finer ones would be cut.
bool isFraction(std::string_view text)
{
    constexpr size_t kMicroseconds = 6;
    return text.size() >= 2 && text.size() <= kMicroseconds + 1 && text[0] == '.' &&
           std::all_of(text.begin() + 1, text.end(), isDigit);
}

constexpr size_t kMinutes = 5; // 04:30
constexpr size_t kSeconds = 8; // 04:30:05

/// Whether a text begins with hours and minutes.
bool hasMinutes(std::string_view text)
{
    return text.size() >= kMinutes && text[2] == ':' && twoDigits(text.data()) < 24 &&
           twoDigits(text.data() + 3) < 60;
}

/// Whether seconds follow the minutes, with or without a fraction, to the end of the text.
bool hasSeconds(std::string_view text)
{
    return text.size() >= kSeconds && text[5] == ':' && twoDigits(text.data() + 6) < 60 &&
           (text.size() == kSeconds || isFraction(text.substr(kSeconds)));
}

/// A time of the day.
bool isTime(std::string_view text)
{
    return hasMinutes(text) && (text.size() == kMinutes || hasSeconds(text));
}

/// The form of a text that begins like a date or a time.
Form formOfMoment(std::string_view text)
{
    if (text[2] == ':') {
        return {isTime(text) ? Kind::Time : Kind::Text};
    }
    if (text.size() <= kDateChars + 1) {
        return {isDate(text) ? Kind::Date : Kind::Text};
    }
    const char between = text[kDateChars];
    const bool isUtc = text.back() == 'Z';
    const std::string_view time = text.substr(kDateChars + 1);
    const bool isDateTime = (between == 'T' || between == ' ') &&
                            isDate(text.substr(0, kDateChars)) &&
                            isTime(time.substr(0, time.size() - (isUtc ? 1 : 0)));
    return isDateTime ? Form{.kind = Kind::DateTime, .isUtc = isUtc} : kText;
}

// ---- Numbers.

constexpr qint64 kExactDigits = 15;

/// The form of the digits [at, end) after an optional minus sign; the first is not '0' or the only
/// digit.
Form formOfInteger(const char *at, const char *end, bool isNegative)
{
    constexpr std::string_view kGreatestKey = "4294967293";
    const std::string_view digits(at, static_cast<size_t>(end - at));
    if (isNegative && digits == "0") {
        return {Kind::Decimal}; // an integer would lose the sign
    }
    const bool isKey =
        !isNegative && (digits.size() < kGreatestKey.size() ||
                        (digits.size() == kGreatestKey.size() && digits <= kGreatestKey));
    constexpr std::string_view kGreatest = "9223372036854775807";
    const bool isInteger = digits.size() < kGreatest.size() ||
                           (digits.size() == kGreatest.size() && digits <= kGreatest);
    return {.kind = isInteger ? Kind::Integer : Kind::Decimal,
            .isKey = isKey,
            .isExact = end - at <= kExactDigits};
}

/// The exponent [at, end) after the "e"; greater than all that a double has if it is not one.
int exponentOf(const char *at, const char *end)
{
    constexpr int kInvalid = 10'000;
    const bool isNegative = at != end && *at == '-';
    at += at != end && (*at == '-' || *at == '+') ? 1 : 0;
    if (at == end || skipDigits(at, end) != end) {
        return kInvalid;
    }
    int value = 0;
    for (; at != end; ++at) {
        value = std::min(value * 10 + (*at - '0'), kInvalid - 1);
    }
    return isNegative ? -value : value;
}

/// The parts of a number with a point or an exponent.
struct Decimal
{
    const char *begin = nullptr;    // of the digits before the point
    const char *point = nullptr;    // the end of these
    const char *fraction = nullptr; // the digits after the point
    const char *end = nullptr;      // of the fraction
    int exponent = 0;
};

/// Whether a double holds all digits of the number, and its shortest text has them.
bool isExact(const Decimal &number)
{
    constexpr qint64 kGreatestPower = 300;
    // A double holds an integer of this many digits before up to five zeros. With more zeros its
    // text has an exponent.
    constexpr qint64 kDigitsOfIntegers = 12;
    constexpr qint64 kZerosOfIntegers = 5;
    const char *last = number.end; // zeros at the end of the fraction do not count
    while (last != number.fraction && last[-1] == '0') {
        --last;
    }
    const char *const whole = skipZeros(number.begin, number.point);
    const char *const first = skipZeros(number.fraction, last);
    const bool isBelowOne = whole == number.point;
    const qint64 digits =
        isBelowOne ? last - first : (number.point - whole) + (last - number.fraction);
    const qint64 power =
        (isBelowOne ? number.fraction - first : number.point - whole) + number.exponent;
    // The text of such a double is an integer with digits of its own: 9737228.13882082e10 becomes
    // 97372281388208192.
    const bool isLongInteger =
        power > kExactDigits && digits > kDigitsOfIntegers && power <= digits + kZerosOfIntegers;
    return digits == 0 || (digits <= kExactDigits && !isLongInteger && power >= -kGreatestPower &&
                           power <= kGreatestPower);
}

/// The form of a number whose digits before the point are [begin, point).
Form formOfDecimal(const char *begin, const char *point, const char *end, char decimalPoint)
{
    constexpr int kLongestExponent = 9'999;
    Decimal number{begin, point, point, point};
    if (point != end && *point == decimalPoint) {
        number.fraction = point + 1;
        number.end = skipDigits(number.fraction, end);
    }
    const bool hasDigits = number.point != number.begin || number.end != number.fraction;
    if (!hasDigits) {
        return kText;
    }
    if (number.end == end && end - begin <= kExactDigits) {
        return {.kind = Kind::Decimal}; // as most are: exact whatever its digits are
    }
    if (number.end != end) {
        const bool hasExponent = *number.end == 'e' || *number.end == 'E';
        number.exponent = hasExponent ? exponentOf(number.end + 1, end) : kLongestExponent + 1;
        if (number.exponent > kLongestExponent) {
            return kText;
        }
    }
    return {.kind = Kind::Decimal, .isExact = isExact(number)};
}

Form formOfNumber(std::string_view text, char decimalPoint)
{
    const char *const end = text.data() + text.size();
    const bool isNegative = text[0] == '-';
    const char *const begin = text.data() + (isNegative ? 1 : 0);
    const char *const stop = skipDigits(begin, end);
    const bool hasLeadingZero = stop - begin > 1 && *begin == '0';
    if (stop == end) {
        return hasLeadingZero || stop == begin ? kText : formOfInteger(begin, end, isNegative);
    }
    if ((*stop == '-' || *stop == ':') && !isNegative && text.size() > 4) {
        return formOfMoment(text);
    }
    return hasLeadingZero ? kText : formOfDecimal(begin, stop, end, decimalPoint);
}

bool isBoolean(std::string_view text)
{
    return text == "true" || text == "false" || text == "True" || text == "False" ||
           text == "TRUE" || text == "FALSE";
}

} // namespace

Form formOf(std::string_view text, char decimalPoint)
{
    if (text.empty()) {
        return kText;
    }
    const char first = text[0];
    if (isDigit(first) || first == '-' || first == decimalPoint) {
        return formOfNumber(text, decimalPoint);
    }
    return {isBoolean(text) ? Kind::Boolean : Kind::Text};
}

} // namespace corvanta::values
