// readStat: rows from SAS, SPSS and Stata data sets.
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadStatEntry;

class ActionReadStat final : public PendingAction<ActionReadStat, ReadStatParams>
{
public:
    ActionReadStat(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadStatParams> &paramTable() { return readStatParamTable(); }
    static int pinsInFor(const ReadStatParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
