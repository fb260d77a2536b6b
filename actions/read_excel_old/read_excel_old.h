// readExcelOld: reads the rows of one worksheet of a legacy binary workbook.
//
// It has the parameters of readExcel. A run ends with an error (see PendingAction).
#pragma once
#include "actions/read_excel/read_excel_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadExcelOldEntry;

/// Threads: see PendingAction.
class ActionReadExcelOld final : public PendingAction<ActionReadExcelOld, ReadExcelParams>
{
public:
    ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    /// Pin 0 brings the file name.
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
