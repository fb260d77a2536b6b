// Lists the names of a workbook's sheets, from the member xl/workbook.xml alone.
//
// The member has this name in nearly all workbooks; no relationship is followed. Chart sheets and
// hidden sheets are among the names.
#pragma once
#include "base/result.h"
#include "codecs/zip/package_reader.h"

#include <QStringList>

namespace corvanta::xlsx {

/// Why there is no list. The numbers are those of messages.
enum class SheetListError : quint8 {
    NoWorkbook = 3, ///< the member is missing or cannot be opened
    NoSheets = 4, ///< the path workbook/sheets is missing, or the member ends or is damaged before
                  ///< the end of that element
    NotAnElement = 6, ///< a text, comment or section is among the sheets
};

/// The attribute "name" of each element in workbook/sheets; empty where an element has none.
/// Prefixes of elements do not count. The detail of a fault is the cause in words.
Result<QStringList, SheetListError> readSheetList(zip::PackageReader &package);

} // namespace corvanta::xlsx
