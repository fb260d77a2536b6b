// Reads what a worksheet part has apart from its cells (ECMA-376 part 1, 18.3.1.13, 18.3.1.55).
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xlsx/read/part_text.h"

namespace corvanta::xlsx {

/// Read the whole part. Areas without a valid reference are left out. Errors: those of the part;
/// TooLarge for more than a million areas.
sheet::WorkbookResult<sheet::SheetLayout> readSheetLayout(PartText &part);

} // namespace corvanta::xlsx
