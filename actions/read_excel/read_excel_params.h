// readers/read_excel_params.h
// The parameters of readExcel and readExcelOld.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadExcelParams
{
    bool fileNameFromPin = false;
    int sheetMode = 0;
    QString sheetIdx = QStringLiteral("1");
    QString sheetName;
    bool firstLineContainsColumnNames = true;
    bool outputFilenames = false;
    bool abortIfMissing = true;
    QString fileName;
};

const ParamTable<ReadExcelParams> &readExcelParamTable();

} // namespace corvanta
