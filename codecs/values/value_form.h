// Finds out what the text of a value is: a number, a boolean, a date, a time, or any other text.
//
// Nothing is converted: the forms are chosen so that a number, a date or a time that is made of the
// text later has every digit of it. Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <string_view>

namespace corvanta::values {

/// What a value is. Columns have the same kinds.
enum class Kind : quint8 { Text, Integer, Decimal, Boolean, Date, DateTime, Time };

/// The form of one text.
struct Form
{
    Kind kind = Kind::Text;
    /// An Integer from 0 to 4294967293, which a K cell holds.
    bool isKey = false;
    /// A DateTime that ends with Z: in UTC.
    bool isUtc = false;
    /// A number that a double holds and gives back: at most 15 significant digits, and a size from
    /// 1e-300 to 1e300. True for all other kinds.
    bool isExact = true;
};

/// The form of `text`, in UTF-8. An Integer has digits and at most a minus sign, without leading
/// zeros, and fits into 64 bits; a Decimal may be larger, and have a fraction, after `decimalPoint`
/// (ASCII), and an exponent. A Date is 2026-01-31, a Time 04:30 or 04:30:05.25, and a DateTime both
/// with a T or a blank between; with at most six digits of a fraction; only a DateTime may have a
/// zone, which is Z. A Boolean is "true" or "false", also with a capital first letter or in
/// capitals. The empty text is a Text.
Form formOf(std::string_view text, char decimalPoint = '.');

} // namespace corvanta::values
