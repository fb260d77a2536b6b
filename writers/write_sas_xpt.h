// writers/write_sas_xpt.h
// writeSASXPT: rows into a SAS transport file.
#pragma once
#include "plugin/pending_action.h"
#include "writers/write_sas_xpt_params.h"

namespace corvanta {

class ActionWriteSASXPT final : public PendingAction<ActionWriteSASXPT, WriteSasXptParams>
{
public:
    ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteSasXptParams> &paramTable() { return writeSasXptParamTable(); }
};

} // namespace corvanta
