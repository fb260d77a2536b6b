// What a workbook part says about its sheets and names (ECMA-376 part 1, 18.2).
#pragma once
#include "codecs/opc/error.h"
#include "codecs/sheet/workbook_reader.h"

#include <QByteArray>
#include <QByteArrayView>

#include <vector>

namespace corvanta::xlsx {

/// The parts of the sheets and the kinds of sheets are in the relationships.
struct WorkbookSheets
{
    /// One sheet, as the workbook lists it.
    struct Entry
    {
        sheet::SheetInfo info; ///< its kind is not known here
        QByteArray relationshipId;
    };
    std::vector<Entry> sheets; ///< in the order of their tabs
    std::vector<sheet::DefinedName> names;
    /// Whether serial 0 of a date is 1904-01-01.
    bool uses1904 = false;
};

/// Errors: Encoding, Malformed, Unexpected (no workbook), TooLarge. Threads: pure function.
Result<WorkbookSheets, opc::Error> readWorkbookSheets(QByteArrayView text);

} // namespace corvanta::xlsx
