// readExcel: rows from one worksheet of a workbook.
#pragma once
#include "actions/read_excel/read_excel_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadExcelEntry;

class ActionReadExcel final : public PendingAction<ActionReadExcel, ReadExcelParams>
{
public:
    ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadExcelParams> &paramTable() { return readExcelParamTable(); }
    static int pinsInFor(const ReadExcelParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
