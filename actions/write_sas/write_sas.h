// writers/write_sas.h
// writeSAS: rows into a SAS data set.
#pragma once
#include "actions/write_sas/write_sas_params.h"
#include "plugin/pending_action.h"

namespace corvanta {

class ActionWriteSAS final : public PendingAction<ActionWriteSAS, WriteSasParams>
{
public:
    ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasParams> &paramTable() { return writeSasParamTable(); }
};

} // namespace corvanta
