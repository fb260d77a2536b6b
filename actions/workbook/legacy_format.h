// The legacy workbooks (.xls, .xlt) as a format of the workbook readers.
#pragma once
#include "actions/workbook/open_workbook.h"

namespace corvanta {

/// Of readExcelOld and readExcelSheets.
extern const WorkbookFormat kLegacyWorkbookFormat;

} // namespace corvanta
