// What the cells of typed columns become (parquet-format, LogicalTypes.md):
//
//   type       cell                      stored as
//   BOOLEAN    true FALSE 1 0            1 or 0
//   INT64      -17  4000000000           the integer
//   DATE       2026-01-31                days since 1970-01-01
//   TIMESTAMP  2026-01-31T04:30:05.25Z   microseconds since 1970-01-01T00:00:00
//   TIME       04:30:05.25               microseconds since midnight
//
// Reading the stored value gives the text of the cell again, or one of the same meaning: no digit
// is rounded or left out.
#include "codecs/parquet/write/typed_value.h"

#include "base/number.h"
#include "base/time/iso_time.h"

#include <cmath>
#include <limits>

namespace corvanta::parquet {

namespace {

using Value = std::optional<TypedValue>;

/// Whether the text is `word`, which has small letters, in any letter case.
bool isWord(std::u16string_view text, std::u16string_view word)
{
    constexpr unsigned kSmall = 0x20;
    if (text.size() != word.size()) {
        return false;
    }
    for (size_t i = 0; i < text.size(); ++i) {
        if ((text[i] | kSmall) != word[i]) {
            return false;
        }
    }
    return true;
}

/// Workbooks write the words in capitals, and some databases digits.
Value booleanOf(std::u16string_view text)
{
    const bool isTrue = isWord(text, u"true") || text == u"1";
    const bool isFalse = isWord(text, u"false") || text == u"0";
    return isTrue || isFalse ? Value(TypedValue{isTrue ? 1 : 0}) : std::nullopt;
}

/// A whole number without a plus sign or leading zeros, which an integer would lose.
Value integerOf(std::u16string_view text)
{
    constexpr auto kMax = static_cast<quint64>(std::numeric_limits<qint64>::max());
    const bool isNegative = text.starts_with(u'-');
    text.remove_prefix(isNegative ? 1 : 0);
    quint64 value = 0;
    const bool hasZero = text.starts_with(u'0') && (text.size() > 1 || isNegative);
    if (hasZero || !parseUInt(text, kMax + (isNegative ? 1 : 0), &value)) {
        return std::nullopt;
    }
    // The negation is unsigned, because the smallest qint64 has no positive counterpart.
    return TypedValue{static_cast<qint64>(isNegative ? ~value + 1 : value)};
}

/// Any other fraction of a microsecond would be lost.
std::optional<qint64> microsecondsOf(std::optional<qint64> nanoseconds)
{
    constexpr qint64 kPerMicrosecond = 1000;
    return nanoseconds && *nanoseconds % kPerMicrosecond == 0
               ? std::optional(*nanoseconds / kPerMicrosecond)
               : std::nullopt;
}

Value dateOf(std::u16string_view text)
{
    const auto day = parseIsoDate(text);
    return day ? Value(TypedValue{*day}) : std::nullopt;
}

Value timeOf(std::u16string_view text)
{
    const auto time = microsecondsOf(parseIsoTime(text));
    return time ? Value(TypedValue{*time}) : std::nullopt;
}

/// The years 1 to 9999 fit 64 bits of microseconds.
Value timestampOf(std::u16string_view text)
{
    constexpr qint64 kPerDay = 86'400'000'000;
    const auto moment = parseIsoDateTime(text);
    const auto time = moment ? microsecondsOf(moment->nanoseconds) : std::nullopt;
    return time ? Value(TypedValue{moment->day * kPerDay + *time, moment->isUtc}) : std::nullopt;
}

Value valueOfText(Storage storage, std::u16string_view text)
{
    switch (storage) {
    case Storage::Boolean:
        return booleanOf(text);
    case Storage::Integer:
        return integerOf(text);
    case Storage::Date:
        return dateOf(text);
    case Storage::Timestamp:
        return timestampOf(text);
    case Storage::Time:
        return timeOf(text);
    default:
        return std::nullopt;
    }
}

/// Of a number; only booleans and integers are numbers.
Value valueOfNumber(Storage storage, double number)
{
    const bool isBoolean = storage == Storage::Boolean && (number == 0 || number == 1);
    const bool isInteger = storage == Storage::Integer && number == std::floor(number) &&
                           number >= -0x1p63 && number < 0x1p63;
    return isBoolean || isInteger ? Value(TypedValue{static_cast<qint64>(number)}) : std::nullopt;
}

} // namespace

bool isNull(cell::Type type, const uchar *cell)
{
    switch (type) {
    case cell::Type::Key:
        return cell::isMissingKey(loadNative<quint32>(cell));
    case cell::Type::Double:
        return cell::isMissingDouble(loadNative<double>(cell));
    case cell::Type::Text:
        break;
    }
    return cell::readText(cell).size() == 0;
}

std::optional<TypedValue> typedValueOf(Storage storage, cell::Type type, const uchar *cell)
{
    switch (type) {
    case cell::Type::Key:
        return valueOfNumber(storage, loadNative<quint32>(cell));
    case cell::Type::Double:
        return valueOfNumber(storage, loadNative<double>(cell));
    case cell::Type::Text:
        break;
    }
    return valueOfText(storage, cell::readText(cell).view());
}

} // namespace corvanta::parquet
