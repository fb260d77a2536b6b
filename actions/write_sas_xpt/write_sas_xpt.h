// writers/write_sas_xpt.h
// writeSASXPT: rows into a SAS transport file.
#pragma once
#include "actions/write_sas_xpt/write_sas_xpt_params.h"
#include "plugin/pending_action.h"

namespace corvanta {

class ActionWriteSASXPT final : public PendingAction<ActionWriteSASXPT, WriteSasXptParams>
{
public:
    ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasXptParams> &paramTable() { return writeSasXptParamTable(); }
};

} // namespace corvanta
