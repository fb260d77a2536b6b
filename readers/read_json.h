// readers/read_json.h
// readJSON: rows from the nested values of JSON documents.
#pragma once
#include "plugin/pending_action.h"
#include "readers/read_json_params.h"

namespace corvanta {

class ActionReadJSON final : public PendingAction<ActionReadJSON, ReadJsonParams>
{
public:
    ActionReadJSON(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadJsonParams> &paramTable() { return readJsonParamTable(); }
    static void adjustDefaults(ReadJsonParams &params, double savedVersion)
    {
        adjustReadJsonDefaults(params, savedVersion);
    }
    static int pinsInFor(const ReadJsonParams &params)
    {
        return params.readTagsFromInPin ? 2 : params.fromInputPin != 0 ? 1 : 0;
    }
};

} // namespace corvanta
