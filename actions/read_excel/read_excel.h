// readExcel: reads the rows of one worksheet of a workbook.
//
// The parameters, the panel and the pins are complete; a run ends with an error (see
// PendingAction).
#pragma once
#include "actions/read_excel/read_excel_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadExcelEntry;

/// Threads: see PendingAction.
class ActionReadExcel final : public PendingAction<ActionReadExcel, ReadExcelParams>
{
public:
    ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
