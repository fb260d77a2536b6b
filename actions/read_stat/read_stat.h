// readStat: reads the rows of SAS, SPSS and Stata data sets.
//
// The parameters, the panel and the pins are complete; a run ends with an error (see
// PendingAction).
#pragma once
#include "actions/read_stat/read_stat_params.h"
#include "actions/shared/pending_action.h"

namespace corvanta {

extern const ActionEntry kReadStatEntry;

/// Threads: see PendingAction.
class ActionReadStat final : public PendingAction<ActionReadStat, ReadStatParams>
{
public:
    ActionReadStat(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadStatParams> &paramTable() { return readStatParamTable(); }
    /// Pin 0 brings the file names.
    static int pinsInFor(const ReadStatParams &params) { return params.fileNameFromPin ? 1 : 0; }
};

} // namespace corvanta
