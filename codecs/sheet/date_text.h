// Serial numbers of worksheets as ISO 8601 text (ECMA-376 part 1, 18.17.4.1).
#pragma once
#include "codecs/sheet/workbook_reader.h"

#include <optional>
#include <string_view>

namespace corvanta::sheet {

/// Units that putDateText() may write.
inline constexpr int kDateTextUnits = 48;

/// Write the date, time or duration that programs show for `serial`: "2024-02-29",
/// "2024-02-29T12:30:00", "12:30:00" or, for durations, hours without a limit "255:10:10".
/// Milliseconds follow if there are any. A date has a time if the serial has one, whatever the form
/// says, so that nothing is lost. Serial 60 of the calendar from 1900 is 1900-02-29. Returns the
/// units; 0 for General and for a serial that is not a date (before the first day, after 9999).
int putDateText(NumberForm form, double serial, bool uses1904, char16_t *out);

/// The serial of an ISO 8601 date, date with time, or time, in the calendar of the workbook.
/// std::nullopt for other text.
std::optional<double> serialOfIsoText(std::u16string_view text, bool uses1904);

} // namespace corvanta::sheet
