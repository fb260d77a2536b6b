// A number is first made microseconds since the epoch of its format, and then split into day and
// time of day. Integers keep the fraction exact: 6 digits of any second of the years 1 to 9999 fit
// into 64 bits.
//
//   SAS, Stata  1960-01-01    days, seconds, milliseconds, or periods of a calendar year
//   SPSS        1582-10-14    seconds, for dates too
#include "codecs/stat/date_text.h"

#include "base/number.h"

#include <QDate>

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <span>
#include <string_view>

namespace corvanta::stat {

namespace {

// ---- Formats.

struct NamedKind
{
    std::string_view name;
    DateKind kind;
};

// Names without width and without the letter of a separator, sorted.
constexpr std::array kSasFormats{
    NamedKind{"B8601DA", DateKind::SasDate},
    NamedKind{"B8601DN", DateKind::SasDateOfSeconds},
    NamedKind{"B8601DT", DateKind::SasDateTime},
    NamedKind{"B8601DX", DateKind::SasDateTime},
    NamedKind{"B8601DZ", DateKind::SasDateTime},
    NamedKind{"B8601LX", DateKind::SasDateTime},
    NamedKind{"B8601LZ", DateKind::Time},
    NamedKind{"B8601TM", DateKind::Time},
    NamedKind{"B8601TX", DateKind::Time},
    NamedKind{"B8601TZ", DateKind::Time},
    NamedKind{"DATE", DateKind::SasDate},
    NamedKind{"DATEAMPM", DateKind::SasDateTime},
    NamedKind{"DATETIME", DateKind::SasDateTime},
    NamedKind{"DAY", DateKind::SasDate},
    NamedKind{"DDMMYY", DateKind::SasDate},
    NamedKind{"DOWNAME", DateKind::SasDate},
    NamedKind{"DTDATE", DateKind::SasDateOfSeconds},
    NamedKind{"DTMONYY", DateKind::SasDateOfSeconds},
    NamedKind{"DTWKDATX", DateKind::SasDateOfSeconds},
    NamedKind{"DTYEAR", DateKind::SasDateOfSeconds},
    NamedKind{"DTYYQC", DateKind::SasDateOfSeconds},
    NamedKind{"E8601DA", DateKind::SasDate},
    NamedKind{"E8601DN", DateKind::SasDateOfSeconds},
    NamedKind{"E8601DT", DateKind::SasDateTime},
    NamedKind{"E8601DX", DateKind::SasDateTime},
    NamedKind{"E8601DZ", DateKind::SasDateTime},
    NamedKind{"E8601LX", DateKind::SasDateTime},
    NamedKind{"E8601LZ", DateKind::Time},
    NamedKind{"E8601TM", DateKind::Time},
    NamedKind{"E8601TX", DateKind::Time},
    NamedKind{"E8601TZ", DateKind::Time},
    NamedKind{"EURDFDD", DateKind::SasDate},
    NamedKind{"EURDFDE", DateKind::SasDate},
    NamedKind{"EURDFDN", DateKind::SasDate},
    NamedKind{"EURDFDT", DateKind::SasDateTime},
    NamedKind{"EURDFDWN", DateKind::SasDate},
    NamedKind{"EURDFMN", DateKind::SasDate},
    NamedKind{"EURDFMY", DateKind::SasDate},
    NamedKind{"EURDFWDX", DateKind::SasDate},
    NamedKind{"EURDFWKX", DateKind::SasDate},
    NamedKind{"HDATE", DateKind::SasDate},
    NamedKind{"HEBDATE", DateKind::SasDate},
    NamedKind{"HHMM", DateKind::Time},
    NamedKind{"HOUR", DateKind::Time},
    NamedKind{"IS8601DA", DateKind::SasDate},
    NamedKind{"IS8601DT", DateKind::SasDateTime},
    NamedKind{"IS8601TM", DateKind::Time},
    NamedKind{"JULDATE", DateKind::SasDate},
    NamedKind{"JULDAY", DateKind::SasDate},
    NamedKind{"JULIAN", DateKind::SasDate},
    NamedKind{"MDYAMPM", DateKind::SasDateTime},
    NamedKind{"MINGUO", DateKind::SasDate},
    NamedKind{"MMDDYY", DateKind::SasDate},
    NamedKind{"MMSS", DateKind::Time},
    NamedKind{"MMYY", DateKind::SasDate},
    NamedKind{"MONNAME", DateKind::SasDate},
    NamedKind{"MONTH", DateKind::SasDate},
    NamedKind{"MONYY", DateKind::SasDate},
    NamedKind{"NENGO", DateKind::SasDate},
    NamedKind{"NLDATE", DateKind::SasDate},
    NamedKind{"NLDATEL", DateKind::SasDate},
    NamedKind{"NLDATEM", DateKind::SasDate},
    NamedKind{"NLDATES", DateKind::SasDate},
    NamedKind{"NLDATEW", DateKind::SasDate},
    NamedKind{"NLDATM", DateKind::SasDateTime},
    NamedKind{"NLDATML", DateKind::SasDateTime},
    NamedKind{"NLDATMM", DateKind::SasDateTime},
    NamedKind{"NLDATMS", DateKind::SasDateTime},
    NamedKind{"NLDATMW", DateKind::SasDateTime},
    NamedKind{"NLTIMAP", DateKind::Time},
    NamedKind{"NLTIME", DateKind::Time},
    NamedKind{"PDJULG", DateKind::SasDate},
    NamedKind{"PDJULI", DateKind::SasDate},
    NamedKind{"QTR", DateKind::SasDate},
    NamedKind{"QTRR", DateKind::SasDate},
    NamedKind{"TIME", DateKind::Time},
    NamedKind{"TIMEAMPM", DateKind::Time},
    NamedKind{"TOD", DateKind::Time},
    NamedKind{"WEEKDATE", DateKind::SasDate},
    NamedKind{"WEEKDATX", DateKind::SasDate},
    NamedKind{"WEEKDAY", DateKind::SasDate},
    NamedKind{"WEEKU", DateKind::SasDate},
    NamedKind{"WEEKV", DateKind::SasDate},
    NamedKind{"WEEKW", DateKind::SasDate},
    NamedKind{"WORDDATE", DateKind::SasDate},
    NamedKind{"WORDDATX", DateKind::SasDate},
    NamedKind{"YEAR", DateKind::SasDate},
    NamedKind{"YYMM", DateKind::SasDate},
    NamedKind{"YYMMDD", DateKind::SasDate},
    NamedKind{"YYMON", DateKind::SasDate},
    NamedKind{"YYQ", DateKind::SasDate},
    NamedKind{"YYQR", DateKind::SasDate},
    NamedKind{"YYQZ", DateKind::SasDate},
};

// Days, months, quarters and weeks of a year are dates too: the number is that of a day.
constexpr std::array kSpssFormats{
    NamedKind{"ADATE", DateKind::SpssDate},
    NamedKind{"DATE", DateKind::SpssDate},
    NamedKind{"DATETIME", DateKind::SpssDateTime},
    NamedKind{"DTIME", DateKind::Time},
    NamedKind{"EDATE", DateKind::SpssDate},
    NamedKind{"JDATE", DateKind::SpssDate},
    NamedKind{"MOYR", DateKind::SpssDate},
    NamedKind{"MTIME", DateKind::Time},
    NamedKind{"QYR", DateKind::SpssDate},
    NamedKind{"SDATE", DateKind::SpssDate},
    NamedKind{"TIME", DateKind::Time},
    NamedKind{"WKYR", DateKind::SpssDate},
    NamedKind{"YMDHMS", DateKind::SpssDateTime},
};

static_assert(std::ranges::is_sorted(kSasFormats, {}, &NamedKind::name));
static_assert(std::ranges::is_sorted(kSpssFormats, {}, &NamedKind::name));

/// The kind of the format with exactly this name.
DateKind find(std::span<const NamedKind> formats, std::string_view name)
{
    const auto at = std::ranges::lower_bound(formats, name, {}, &NamedKind::name);
    return at != formats.end() && at->name == name ? at->kind : DateKind::None;
}

/// Formats whose names may end with the letter of a separator.
constexpr std::array kWithSeparator{"DDMMYY", "MMDDYY", "MMYY", "YYMM", "YYMMDD", "YYQ", "YYQR"};

/// Whether the last letter may be that of a separator: blank, colon, dash, none, period or slash.
bool endsInSeparator(std::string_view name)
{
    constexpr std::string_view kSeparators = "BCDNPS";
    return name.size() > 3 && kSeparators.find(name.back()) != std::string_view::npos;
}

/// A name such as DDMMYYP is DDMMYY with a separator.
DateKind sasKindWithSeparator(std::string_view name)
{
    const std::string_view base = name.substr(0, name.size() - 1);
    const bool isKnown = std::ranges::find(kWithSeparator, base) != kWithSeparator.end();
    return isKnown ? DateKind::SasDate : DateKind::None;
}

/// The whole name comes first: B8601DN and others end in such a letter without a separator.
DateKind sasKind(std::string_view name)
{
    const DateKind kind = find(kSasFormats, name);
    const bool isWhole = kind != DateKind::None || !endsInSeparator(name);
    return isWhole ? kind : sasKindWithSeparator(name);
}

/// %[-][t]UNIT...; a letter other than the units below is a number or a business calendar.
DateKind stataKind(const QString &format)
{
    qsizetype at = format.startsWith(u"%-") ? 2 : 1;
    if (format.mid(at, 1) == u"d") {
        return DateKind::SasDate;
    }
    if (!format.startsWith(u'%') || format.mid(at, 1) != u"t" || format.size() <= ++at) {
        return DateKind::None;
    }
    switch (format[at].unicode()) {
    case 'd':
        return DateKind::SasDate;
    case 'c':
        return DateKind::StataClock;
    case 'C':
        return DateKind::StataLeapClock;
    case 'w':
        return DateKind::StataWeek;
    case 'm':
        return DateKind::StataMonth;
    case 'q':
        return DateKind::StataQuarter;
    case 'h':
        return DateKind::StataHalf;
    case 'y':
        return DateKind::StataYear;
    default:
        return DateKind::None;
    }
}

// ---- Numbers.

constexpr qint64 kMicros = 1'000'000; // in a second
constexpr qint64 kSecondsPerDay = 86'400;
constexpr qint64 kMicrosPerDay = kSecondsPerDay * kMicros;
constexpr qint64 kJulianDay1960 = 2'436'935; // 1960-01-01
constexpr qint64 kJulianDaySpss = 2'299'160; // 1582-10-14, in the proleptic Gregorian calendar
constexpr int kFirstStataYear = 1960;
constexpr int kLastYear = 9999;

/// Days at whose end a leap second was inserted, as year and month (IERS Bulletin C).
struct LeapMonth
{
    int year;
    int month; ///< 6 or 12
};
constexpr std::array kLeapMonths{
    LeapMonth{1972, 6},  LeapMonth{1972, 12}, LeapMonth{1973, 12}, LeapMonth{1974, 12},
    LeapMonth{1975, 12}, LeapMonth{1976, 12}, LeapMonth{1977, 12}, LeapMonth{1978, 12},
    LeapMonth{1979, 12}, LeapMonth{1981, 6},  LeapMonth{1982, 6},  LeapMonth{1983, 6},
    LeapMonth{1985, 6},  LeapMonth{1987, 12}, LeapMonth{1989, 12}, LeapMonth{1990, 12},
    LeapMonth{1992, 6},  LeapMonth{1993, 6},  LeapMonth{1994, 6},  LeapMonth{1995, 12},
    LeapMonth{1997, 6},  LeapMonth{1998, 12}, LeapMonth{2005, 12}, LeapMonth{2008, 12},
    LeapMonth{2012, 6},  LeapMonth{2015, 6},  LeapMonth{2016, 12},
};

/// `number` units of `unitMicros` microseconds; nothing if that is more than the calendar has.
std::optional<qint64> toMicros(double number, qint64 unitMicros)
{
    constexpr double kMost = 4e17; // 12,000 years
    const double micros = number * static_cast<double>(unitMicros);
    return std::abs(micros) < kMost ? std::optional<qint64>(std::llround(micros)) : std::nullopt;
}

/// Rounds down, so that moments before the epoch are in the right day.
qint64 floorDiv(qint64 value, qint64 by)
{
    return value / by - (value % by < 0 ? 1 : 0);
}

/// Exactly `digits` digits, with zeros before the number. Returns the end, like all functions here.
char *putDigits(qint64 value, int digits, char *out)
{
    for (int i = digits; i-- > 0; value /= 10) {
        out[i] = static_cast<char>('0' + value % 10);
    }
    return out + digits;
}

char *putYmd(int year, int month, int day, char *out)
{
    out = putDigits(year, 4, out);
    *out++ = '-';
    out = putDigits(month, 2, out);
    *out++ = '-';
    return putDigits(day, 2, out);
}

/// Null for a day outside the years 1 to 9999.
char *putDay(qint64 julianDay, char *out)
{
    const QDate date = QDate::fromJulianDay(julianDay);
    if (!date.isValid() || date.year() < 1 || date.year() > kLastYear) {
        return nullptr;
    }
    return putYmd(date.year(), date.month(), date.day(), out);
}

/// `micros` is not negative. Hours are not limited to a day.
char *putClock(qint64 micros, char *out)
{
    constexpr qint64 kHour = 3600;
    const qint64 seconds = micros / kMicros;
    const qint64 hours = seconds / kHour;
    out = hours < 100 ? putDigits(hours, 2, out) : out + putUInt(static_cast<quint64>(hours), out);
    *out++ = ':';
    out = putDigits(seconds / 60 % 60, 2, out);
    *out++ = ':';
    out = putDigits(seconds % 60, 2, out);
    qint64 fraction = micros % kMicros;
    int digits = 6;
    for (; fraction != 0 && fraction % 10 == 0; fraction /= 10) {
        --digits;
    }
    if (fraction != 0) {
        *out++ = '.';
        out = putDigits(fraction, digits, out);
    }
    return out;
}

/// The time of day after the date.
char *putTimeOfDay(qint64 micros, char *out)
{
    *out++ = 'T';
    return putClock(micros, out);
}

/// `micros` since the epoch. A moment before it belongs to the day that it is in, so the time of
/// day is never negative.
char *putMoment(qint64 epochDay, qint64 micros, char *out)
{
    const qint64 day = floorDiv(micros, kMicrosPerDay);
    out = putDay(epochDay + day, out);
    return out == nullptr ? nullptr : putTimeOfDay(micros - day * kMicrosPerDay, out);
}

char *putDateTime(qint64 epochDay, std::optional<qint64> micros, char *out)
{
    return micros ? putMoment(epochDay, *micros, out) : nullptr;
}

/// Only the day of the moment.
char *putDateOf(qint64 epochDay, std::optional<qint64> micros, char *out)
{
    return micros ? putDay(epochDay + floorDiv(*micros, kMicrosPerDay), out) : nullptr;
}

/// Durations may be negative, and longer than a day.
char *putDuration(qint64 micros, char *out)
{
    if (micros < 0) {
        *out++ = '-';
    }
    return putClock(std::abs(micros), out);
}

char *putTime(std::optional<qint64> micros, char *out)
{
    return micros ? putDuration(*micros, out) : nullptr;
}

/// The end of the month, in microseconds of UTC since 1960.
qint64 endOf(const LeapMonth &leap)
{
    const QDate next = QDate(leap.year, leap.month, 1).addMonths(1);
    return (next.toJulianDay() - kJulianDay1960) * kMicrosPerDay;
}

/// The leap seconds that a clock with leap seconds has counted until `micros`. The clock runs ahead
/// of UTC by those before, and shows the first second after a month one second later.
qint64 leapMicrosUntil(qint64 micros)
{
    qint64 inserted = 0;
    for (const LeapMonth &leap : kLeapMonths) {
        inserted += micros >= endOf(leap) + inserted + kMicros ? kMicros : 0;
    }
    return inserted;
}

/// UTC of a clock that counts leap seconds; both since 1960.
std::optional<qint64> withoutLeapSeconds(std::optional<qint64> micros)
{
    return micros ? std::optional(*micros - leapMicrosUntil(*micros)) : std::nullopt;
}

/// Periods since 1960, `perYear` in a year; the month, or the week of 7 days, begins a period.
char *putPeriod(double number, int perYear, char *out)
{
    constexpr int kWeeks = 52;
    constexpr int kMonths = 12;
    constexpr double kMost = 1e6;
    if (!(std::abs(number) < kMost)) {
        return nullptr;
    }
    const auto count = static_cast<qint64>(std::floor(number));
    const qint64 year = kFirstStataYear + floorDiv(count, perYear);
    const auto part = static_cast<int>(count - floorDiv(count, perYear) * perYear);
    if (year < 1 || year > kLastYear) {
        return nullptr;
    }
    if (perYear == kWeeks) {
        return putDay(QDate(static_cast<int>(year), 1, 1).toJulianDay() + 7LL * part, out);
    }
    return putYmd(static_cast<int>(year), part * (kMonths / perYear) + 1, 1, out);
}

/// Returns the end of the text; null for no date.
char *put(DateKind kind, double number, char *out)
{
    switch (kind) {
    case DateKind::SasDate:
        return putDateOf(kJulianDay1960, toMicros(number, kMicrosPerDay), out);
    case DateKind::SasDateTime:
        return putDateTime(kJulianDay1960, toMicros(number, kMicros), out);
    case DateKind::SasDateOfSeconds:
        return putDateOf(kJulianDay1960, toMicros(number, kMicros), out);
    case DateKind::Time:
        return putTime(toMicros(number, kMicros), out);
    case DateKind::SpssDate:
        return putDateOf(kJulianDaySpss, toMicros(number, kMicros), out);
    case DateKind::SpssDateTime:
        return putDateTime(kJulianDaySpss, toMicros(number, kMicros), out);
    case DateKind::StataClock:
        return putDateTime(kJulianDay1960, toMicros(number, kMicros / 1000), out);
    case DateKind::StataLeapClock:
        return putDateTime(kJulianDay1960, withoutLeapSeconds(toMicros(number, kMicros / 1000)),
                           out);
    case DateKind::StataWeek:
        return putPeriod(number, 52, out);
    case DateKind::StataMonth:
        return putPeriod(number, 12, out);
    case DateKind::StataQuarter:
        return putPeriod(number, 4, out);
    case DateKind::StataHalf:
        return putPeriod(number, 2, out);
    case DateKind::StataYear:
        return putPeriod(number - kFirstStataYear, 1, out);
    case DateKind::None:
        break;
    }
    return nullptr;
}

} // namespace

QString formatName(const QString &format)
{
    const auto isOfName = [](QChar c) { return (c < u'0' || c > u'9') && c != u'.'; };
    const auto last = std::find_if(format.crbegin(), format.crend(), isOfName);
    return format.first(format.crend() - last);
}

DateKind dateKindOf(Format format, const QString &variableFormat)
{
    if (format == Format::Stata) {
        return stataKind(variableFormat);
    }
    const QByteArray upper = formatName(variableFormat).toUpper().toUtf8();
    const std::string_view name(upper.constData(), static_cast<size_t>(upper.size()));
    return isOfSas(format) ? sasKind(name) : find(kSpssFormats, name);
}

int putDateText(DateKind kind, double number, char *out)
{
    const char *const end = put(kind, number, out);
    return end == nullptr ? 0 : static_cast<int>(end - out);
}

} // namespace corvanta::stat
