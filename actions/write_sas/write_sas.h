// writeSAS: rows into a SAS data set.
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_sas/write_sas_params.h"

namespace corvanta {

extern const ActionEntry kWriteSasEntry;

class ActionWriteSAS final : public PendingAction<ActionWriteSAS, WriteSasParams>
{
public:
    ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasParams> &paramTable() { return writeSasParamTable(); }
};

} // namespace corvanta
