// readExcelOld: rows from one worksheet of a legacy binary workbook.
#pragma once
#include "actions/read_excel/read_excel_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadExcelOldEntry;

class ActionReadExcelOld final : public PendingAction<ActionReadExcelOld, ReadExcelParams>
{
public:
    ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
