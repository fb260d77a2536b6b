// Which number formats show dates, times and durations (ECMA-376 part 1, 18.8.30 and 18.8.31; the
// legacy formats have the same codes and numbers).
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

} // namespace corvanta::sheet
