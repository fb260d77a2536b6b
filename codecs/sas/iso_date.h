// Reads ISO 8601 dates and times as the numbers of SAS.
//
// SAS counts dates in days, and date-times in seconds, since 1960-01-01, and times in seconds.
#pragma once
#include <QtGlobal>

#include <optional>
#include <string_view>

namespace corvanta::sas {

/// What the numbers of a variable count.
enum class DateUnit : quint8 {
    None,    ///< the variable has no dates
    Days,    ///< since 1960-01-01
    Seconds, ///< since 1960-01-01
    Time     ///< seconds since midnight, or of a duration
};

/// The number for `text`: yyyy-MM-dd, with "T" or a space and hh:mm, seconds, a fraction and Z
/// after it, or for DateUnit::Time only a time, which may be negative or longer than a day. Nothing
/// for other texts, and for a time of day in a variable of days. Threads: any.
std::optional<double> dateValue(std::u16string_view text, DateUnit unit);

} // namespace corvanta::sas
