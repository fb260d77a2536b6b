// The parameters of readExcelSheets.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

struct ReadExcelSheetsParams
{
    /// Input pin 0 brings the name, in its first row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// A file or a pattern. Not expanded yet.
    QString fileName;
};

/// Constant; made by the first call.
const ParamTable<ReadExcelSheetsParams> &readExcelSheetsParamTable();

} // namespace corvanta
