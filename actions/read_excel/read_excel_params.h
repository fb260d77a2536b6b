// The parameters of readExcel and readExcelOld.
#pragma once
#include "actions/shared/params/sheet_selection.h"

namespace corvanta {

struct ReadExcelParams
{
    /// Input pin 0 brings the name, in its first row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// Whether sheetIdx or sheetName selects the sheet; the other one is ignored.
    SheetSelection sheetMode = SheetSelection::ByNumber;
    /// Number of the sheet, from 1; a text, because it may contain variables of the graph.
    QString sheetIdx = QStringLiteral("1");
    QString sheetName;
    /// The first row holds the column names. Off: columns have their letters, and the first row is
    /// data.
    bool firstLineContainsColumnNames = true;
    /// Add the last column _FileNames.
    bool outputFilenames = false;
    /// A missing file fails the run. Off: a warning, and the next file.
    bool abortIfMissing = true;
    /// A file or a pattern. Not expanded yet.
    QString fileName;
};

/// Constant; made by the first call.
const ParamTable<ReadExcelParams> &readExcelParamTable();

} // namespace corvanta
