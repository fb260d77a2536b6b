// readers/read_xbf.h
// ReadXBF: rows from tables of the dBase family.
#pragma once
#include "plugin/pending_action.h"
#include "readers/read_xbf_params.h"

namespace corvanta {

class ActionReadXBF final : public PendingAction<ActionReadXBF, ReadXbfParams>
{
public:
    ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadXbfParams> &paramTable() { return readXbfParamTable(); }
};

} // namespace corvanta
