// The stored forms of annotated values (parquet-format, LogicalTypes.md):
//
//   date       4 bytes, little-endian: days since 1970-01-01
//   time       4 or 8 bytes, little-endian: ticks since midnight
//   timestamp  8 bytes, little-endian: ticks since 1970-01-01 00:00:00
//   INT96      8 bytes nanoseconds of the day, 4 bytes Julian day, both little-endian
//   decimal    integer columns little-endian, byte arrays big-endian; two's complement
//   UUID       16 bytes, big-endian
#include "codecs/parquet/read/logical_text.h"

#include "base/bytes.h"
#include "base/number.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace corvanta::parquet {

namespace {

constexpr qint64 kSecondsPerDay = 86400;

struct Quotient
{
    qint64 whole;
    qint64 rest; ///< From 0 to by - 1.
};
/// Division that rounds toward minus infinity.
Quotient floorDivide(qint64 value, qint64 by)
{
    const qint64 rest = (value % by + by) % by;
    return {value / by - (value % by < 0 ? 1 : 0), rest};
}

/// Print the low `digits` digits, with leading zeros.
char *putDigits(quint64 value, int digits, char *out)
{
    for (int i = digits; i-- > 0; value /= 10) {
        out[i] = static_cast<char>('0' + value % 10);
    }
    return out + digits;
}

char *putSigned(qint64 value, char *out)
{
    if (value < 0) {
        *out++ = '-';
        // The negation is unsigned, because the smallest qint64 has no positive counterpart.
        return out + putUInt(~static_cast<quint64>(value) + 1, out);
    }
    return out + putUInt(static_cast<quint64>(value), out);
}

/// Print a day number (0 is 1970-01-01) in the proleptic Gregorian calendar. The computation uses
/// eras of 400 years that start on 1 March, so that the leap day is the last day of a year.
char *putDate(qint64 day, char *out)
{
    constexpr qint64 kDaysPerEra = 146097;
    constexpr qint64 kDaysToEpoch = 719468; // from 0000-03-01
    const auto [era, dayOfEra] = floorDivide(day + kDaysToEpoch, kDaysPerEra);
    // Every 4th year has one day more, except every 100th (36524 days), except every 400th.
    const qint64 yearOfEra =
        (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / (kDaysPerEra - 1)) / 365;
    const qint64 dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    // Months from March on: five months have 153 days, in the pattern 31, 30, 31, 30, 31.
    const qint64 shiftedMonth = (5 * dayOfYear + 2) / 153;
    const qint64 month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const qint64 year = yearOfEra + era * 400 + (month <= 2 ? 1 : 0);
    if (year < 0) {
        *out++ = '-';
    }
    // ISO 8601: at least four digits, more only if the year needs them.
    constexpr qint64 kFourDigits = 9999;
    const qint64 shown = std::abs(year);
    out = shown <= kFourDigits ? putDigits(static_cast<quint64>(shown), 4, out)
                               : putSigned(shown, out);
    *out++ = '-';
    out = putDigits(static_cast<quint64>(month), 2, out);
    *out++ = '-';
    return putDigits(static_cast<quint64>(dayOfYear - (153 * shiftedMonth + 2) / 5 + 1), 2, out);
}

/// Print seconds and the fraction without trailing zeros. `digits` is the number of digits of the
/// fraction. Seconds outside the day give more than 24 hours.
char *putTimeOfDay(qint64 seconds, qint64 fraction, int digits, char *out)
{
    const auto hours = static_cast<quint64>(seconds / 3600);
    out = hours < 100 ? putDigits(hours, 2, out) : out + putUInt(hours, out);
    *out++ = ':';
    out = putDigits(static_cast<quint64>(seconds / 60 % 60), 2, out);
    *out++ = ':';
    out = putDigits(static_cast<quint64>(seconds % 60), 2, out);
    if (fraction != 0) {
        *out++ = '.';
        out = putDigits(static_cast<quint64>(fraction), digits, out);
        while (out[-1] == '0') {
            --out;
        }
    }
    return out;
}

char *putTimestamp(qint64 day, qint64 seconds, qint64 fraction, const FormDetail &detail, char *out)
{
    out = putDate(day, out);
    *out++ = 'T';
    out = putTimeOfDay(seconds, fraction, detail.fractionDigits, out);
    if (detail.isUtc) {
        *out++ = 'Z';
    }
    return out;
}

/// Print a time of day. A damaged one may be negative or after the day's end, and shows that.
char *putTime(qint64 ticks, const FormDetail &detail, char *out)
{
    // Rounded toward 0, so that the digits of a negative time are those of the positive one. The
    // smallest qint64 has no positive counterpart, but its quotient and its rest have.
    if (ticks < 0) {
        *out++ = '-';
    }
    return putTimeOfDay(std::abs(ticks / detail.ticksPerSecond),
                        std::abs(ticks % detail.ticksPerSecond), detail.fractionDigits, out);
}

char *putTicks(qint64 ticks, const FormDetail &detail, char *out)
{
    const auto [allSeconds, fraction] = floorDivide(ticks, detail.ticksPerSecond);
    const auto [day, seconds] = floorDivide(allSeconds, kSecondsPerDay);
    return putTimestamp(day, seconds, fraction, detail, out);
}

/// Print an INT96 timestamp.
char *putInt96(const char *stored, const FormDetail &detail, char *out)
{
    constexpr qint64 kJulianDayOfEpoch = 2440588;
    const auto [seconds, fraction] = floorDivide(loadLE<qint64>(stored), detail.ticksPerSecond);
    const auto [days, secondOfDay] = floorDivide(seconds, kSecondsPerDay);
    const qint64 day = static_cast<qint64>(loadLE<quint32>(stored + 8)) - kJulianDayOfEpoch + days;
    return putTimestamp(day, secondOfDay, fraction, detail, out);
}

/// The absolute value of a big-endian two's complement number, in words, least significant first.
std::vector<quint32> magnitudeOf(std::string_view stored, bool isNegative)
{
    std::vector<quint32> words((stored.size() + 3) / 4, 0);
    quint32 carry = isNegative ? 1 : 0;
    for (size_t i = 0; i < stored.size(); ++i) {
        const auto byte = static_cast<uchar>(stored[stored.size() - 1 - i]);
        const quint32 positive = (isNegative ? static_cast<uchar>(~byte) : byte) + carry;
        // Negation in two's complement: invert all bits and add 1.
        carry = positive >> 8;
        words[i / 4] |= (positive & 0xFF) << (8 * (i % 4));
    }
    return words;
}

/// Append the decimal digits of a number, least significant first, without leading zeros. Divides
/// by 10^9 until nothing is left.
void appendDigits(std::vector<quint32> words, std::vector<char> &digits)
{
    constexpr quint64 kChunk = 1'000'000'000;
    constexpr int kChunkDigits = 9;
    while (!words.empty()) {
        quint64 rest = 0;
        for (size_t i = words.size(); i-- > 0;) {
            rest = rest << 32 | words[i];
            words[i] = static_cast<quint32>(rest / kChunk);
            rest %= kChunk;
        }
        for (int i = 0; i < kChunkDigits; ++i, rest /= 10) {
            digits.push_back(static_cast<char>('0' + rest % 10));
        }
        while (!words.empty() && words.back() == 0) {
            words.pop_back();
        }
    }
    while (!digits.empty() && digits.back() == '0') {
        digits.pop_back();
    }
}

/// Print a decimal with all digits of its scale.
char *putDecimal(std::string_view bigEndian, int scale, char *out)
{
    const bool isNegative = !bigEndian.empty() && static_cast<uchar>(bigEndian[0]) >= 0x80;
    std::vector<char> digits;
    appendDigits(magnitudeOf(bigEndian, isNegative), digits);
    // At least one digit before the decimal point.
    digits.resize(std::max(digits.size(), static_cast<size_t>(scale) + 1), '0');
    if (isNegative) {
        *out++ = '-';
    }
    for (size_t i = digits.size(); i-- > 0;) {
        *out++ = digits[i];
        if (i == static_cast<size_t>(scale) && scale != 0) {
            *out++ = '.';
        }
    }
    return out;
}

char *putIntegerDecimal(const Column &column, std::string_view stored, char *out)
{
    std::array<char, sizeof(qint64)> bigEndian{};
    std::reverse_copy(stored.begin(), stored.end(), bigEndian.begin());
    return putDecimal({bigEndian.data(), stored.size()}, column.detail.scale, out);
}

/// The text form of RFC 9562: groups of 4, 2, 2, 2 and 6 bytes.
char *putUuid(std::string_view stored, char *out)
{
    constexpr std::string_view kDigits = "0123456789abcdef";
    for (size_t i = 0; i < stored.size(); ++i) {
        if (i == 4 || i == 6 || i == 8 || i == 10) {
            *out++ = '-';
        }
        *out++ = kDigits[static_cast<uchar>(stored[i]) >> 4];
        *out++ = kDigits[static_cast<uchar>(stored[i]) & 0x0F];
    }
    return out;
}

qint64 integerOf(std::string_view stored)
{
    return stored.size() == sizeof(qint32) ? loadLE<qint32>(stored.data())
                                           : loadLE<qint64>(stored.data());
}

} // namespace

qsizetype maxLogicalChars(const Column &column, qsizetype bytes)
{
    constexpr qsizetype kOthers = 64; // longer than any date, time or integer
    // 8 bits have less than 2.5 digits.
    return column.form == Form::TextDecimal ? bytes * 5 / 2 + column.detail.scale + kOthers
                                            : kOthers;
}

qsizetype putLogical(const Column &column, std::string_view stored, char *out)
{
    char *end = out;
    switch (column.form) {
    case Form::TextDate:
        end = putDate(integerOf(stored), out);
        break;
    case Form::TextTime:
        end = putTime(integerOf(stored), column.detail, out);
        break;
    case Form::TextTimestamp:
        end = putTicks(integerOf(stored), column.detail, out);
        break;
    case Form::TextInt96:
        end = putInt96(stored.data(), column.detail, out);
        break;
    case Form::TextUuid:
        end = putUuid(stored, out);
        break;
    case Form::TextUint64:
        end += putUInt(static_cast<quint64>(integerOf(stored)), out);
        break;
    case Form::TextDecimal:
        end = column.physical == kInt32 || column.physical == kInt64
                  ? putIntegerDecimal(column, stored, out)
                  : putDecimal(stored, column.detail.scale, out);
        break;
    default:
        end = putSigned(integerOf(stored), out);
    }
    return end - out;
}

double fromHalf(quint16 half)
{
    constexpr int kExponentBias = 15;
    constexpr int kFractionBits = 10;
    const int exponent = half >> kFractionBits & 0x1F;
    const int fraction = half & 0x3FF;
    double value = 0;
    // The largest exponent marks infinities and NaN, the smallest one zeros and denormalized
    // numbers, which have no implied leading bit.
    if (exponent == 0x1F) {
        value = fraction == 0 ? std::numeric_limits<double>::infinity()
                              : std::numeric_limits<double>::quiet_NaN();
    } else if (exponent == 0) {
        value = std::ldexp(fraction, 1 - kExponentBias - kFractionBits);
    } else {
        value = std::ldexp(0x400 + fraction, exponent - kExponentBias - kFractionBits);
    }
    return (half & 0x8000) != 0 ? -value : value;
}

} // namespace corvanta::parquet
