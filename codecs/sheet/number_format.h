// Which number formats are valid, and which show dates, times and durations (ECMA-376 part
// 1, 18.8.30 and 18.8.31; the legacy formats have the same codes and numbers).
#pragma once
#include "codecs/sheet/workbook_reader.h"

#include <string_view>

namespace corvanta::sheet {

/// The form of the built-in format `id`, General for the ids that a file must define itself.
/// Includes the ids 27 to 36 and 50 to 58, which East Asian versions use for dates.
NumberForm formOfBuiltIn(int id);

/// The form that a format code such as `[$-409]d/m/yy h:mm AM/PM;@` gives. Only its first section
/// counts, the one of positive numbers. Quoted texts, escaped characters, colours, conditions and
/// locales in it do not. Never fails: an invalid code gives General.
NumberForm formOfCode(std::u16string_view code);

/// Why spreadsheet programs reject a format code.
enum class FormatFault : quint8 {
    None,
    Empty,
    Long,      ///< more than 255 UTF-16 units
    Character, ///< a control character, or one that XML cannot contain
    Quote,     ///< a quoted text without its end
    Bracket,   ///< a bracket without its end
    Letter,    ///< a letter without a meaning, which needs quotes
    Sections,  ///< more than four sections
    End,       ///< ends with a character that refers to the next one
};
/// The first fault of a code, except that Sections comes after the others.
FormatFault faultOfCode(std::u16string_view code);

} // namespace corvanta::sheet
