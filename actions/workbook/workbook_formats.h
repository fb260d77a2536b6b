// The two kinds of workbooks as formats of the workbook readers.
#pragma once
#include "actions/workbook/open_workbook.h"

namespace corvanta {

/// .xlsx and .xlsm, of readExcel.
extern const WorkbookFormat kPackageWorkbookFormat;
/// .xls and .xlt, of readExcelOld and readExcelSheets.
extern const WorkbookFormat kLegacyWorkbookFormat;

} // namespace corvanta
