// The parameters of readExcel and readExcelOld.
#pragma once
#include "actions/shared/params/sheet_selection.h"

namespace corvanta {

struct ReadExcelParams
{
    bool fileNameFromPin = false;
    SheetSelection sheetMode = SheetSelection::ByNumber;
    QString sheetIdx = QStringLiteral("1");
    QString sheetName;
    bool firstLineContainsColumnNames = true;
    bool outputFilenames = false;
    bool abortIfMissing = true;
    QString fileName;
};

const ParamTable<ReadExcelParams> &readExcelParamTable();

} // namespace corvanta
