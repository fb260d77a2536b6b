// The parameters of readExcelSheets.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadExcelSheetsParams
{
    bool fileNameFromPin = false;
    QString fileName;
};

const ParamTable<ReadExcelSheetsParams> &readExcelSheetsParamTable();

} // namespace corvanta
