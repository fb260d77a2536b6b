// writers/write_json.h
// writeJSON: rows into a JSON file of a chosen form.
#pragma once
#include "plugin/pending_action.h"
#include "writers/write_json_params.h"

namespace corvanta {

class ActionWriteJSON final : public PendingAction<ActionWriteJSON, WriteJsonParams>
{
public:
    ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteJsonParams> &paramTable() { return writeJsonParamTable(); }
    static void adjustDefaults(WriteJsonParams &params, double savedVersion)
    {
        adjustWriteJsonDefaults(params, savedVersion);
    }
};

} // namespace corvanta
