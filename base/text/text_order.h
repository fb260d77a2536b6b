// How the texts of a column are compared, where they may stand for other values.
//
// Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <compare>
#include <optional>
#include <string_view>

namespace corvanta {

/// The order of the texts of a text column.
enum class TextOrder : quint8 {
    CodePoints, ///< see compareTexts()
    Words,      ///< of booleans, dates and times: see compareWords()
    Numbers,    ///< as numbers
};

/// Compares by code point, which differs from the order of UTF-16 units only above U+D7FF.
std::weak_ordering compareTexts(std::u16string_view a, std::u16string_view b);
/// Compares dates and times by time, however they are written, and other words without letter case.
std::weak_ordering compareWords(std::u16string_view a, std::u16string_view b);

/// A point in time, or a time of a day.
struct Moment
{
    qint64 day = 0;                                   ///< since 1970-01-01; 0 for a time of a day
    qint64 nanoseconds = 0;                           ///< since midnight
    auto operator<=>(const Moment &) const = default; // NOLINT(modernize-use-nullptr): no pointer
};

/// The moment that all of `text` names: a date, with or without a time, or a time. A date is its
/// midnight. Times without a zone count as those in UTC.
std::optional<Moment> parseMoment(std::u16string_view text);

/// The unit that stands for `unit` in words: letters of ASCII are small.
constexpr char16_t foldedUnit(char16_t unit)
{
    return unit >= u'A' && unit <= u'Z' ? static_cast<char16_t>(unit + 0x20) : unit;
}

} // namespace corvanta
