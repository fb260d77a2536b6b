// readExcelSheets: reads the sheet names of workbooks, one row per sheet.
//
// The parameters, the panel and the pins are complete; a run ends with an error (see
// PendingAction).
#pragma once
#include "actions/read_excel_sheets/read_excel_sheets_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadExcelSheetsEntry;

/// Threads: see PendingAction.
class ActionReadExcelSheets final
    : public PendingAction<ActionReadExcelSheets, ReadExcelSheetsParams>
{
public:
    ActionReadExcelSheets(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelSheetsParams> &paramTable()
    {
        return readExcelSheetsParamTable();
    }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelSheetsParams &params)
    {
        return params.fileNameFromPin ? 1 : 0;
    }
};

} // namespace corvanta
