// Reads dates and times of ISO 8601 as numbers, without allocating memory.
//
// The calendar is the Gregorian one in all years, from 0001 to 9999. Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <optional>
#include <string_view>

namespace corvanta {

/// A date with a time of day, by the clock of the text.
struct IsoDateTime
{
    qint64 day = 0;         ///< since 1970-01-01
    qint64 nanoseconds = 0; ///< since midnight
    bool isUtc = false;     ///< the text ends with Z
};

/// The days since 1970-01-01 of all of `text`, such as 2026-01-31. Nothing for other text.
std::optional<qint32> parseIsoDate(std::u16string_view text);

/// The nanoseconds since midnight of all of `text`: 04:30, 04:30:05, or with a fraction of up to 9
/// digits 04:30:05.25. Nothing for other text, also from 24:00 on.
std::optional<qint64> parseIsoTime(std::u16string_view text);

/// All of `text`: a date, or a date, "T" or a space, a time, and perhaps "Z". A date alone is its
/// midnight. Nothing for other text, also with another zone than Z.
std::optional<IsoDateTime> parseIsoDateTime(std::u16string_view text);

} // namespace corvanta
