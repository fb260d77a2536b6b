// Dates and times of SAS, SPSS and Stata as ISO 8601 text.
//
// The formats of a variable say that its numbers are dates. Public sources: the lists of date,
// time and date-time formats in the SAS and SPSS reference manuals, "help datetime" of Stata.
// Threads: pure functions.
#pragma once
#include "codecs/stat/dictionary.h"

namespace corvanta::stat {

/// Characters that putDateText() may write.
inline constexpr int kDateChars = 64;

/// The name of a format of SAS or SPSS, without width and decimals: "DATE" of "DATE9.". No name
/// ends in a digit.
QString formatName(const QString &format);

/// What the numbers of a variable with this format are; None for all other formats. Width and
/// decimals of the format are ignored.
DateKind dateKindOf(Format format, const QString &variableFormat);

/// Print a number as "2026-11-22", "2026-11-22T04:30:00" or "04:30:00", with as many digits of a
/// fraction of a second as it has, at most 6. Weeks, months, quarters, half-years and years are
/// the date of their first day. Returns the number of characters, and 0 if the number is not a date
/// from the year 1 to 9999, or not finite.
int putDateText(DateKind kind, double number, char *out);

} // namespace corvanta::stat
