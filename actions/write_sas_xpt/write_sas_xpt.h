// writeSASXPT: writes rows to a SAS transport file (.xpt).
//
// The action can be placed, edited, saved and linked; writing is not part of this version, and a
// run ends with an error (PendingAction).
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_sas_xpt/write_sas_xpt_params.h"

namespace corvanta {

extern const ActionEntry kWriteSasXptEntry;

class ActionWriteSASXPT final : public PendingAction<ActionWriteSASXPT, WriteSasXptParams>
{
public:
    ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters);
    bool needsTextLengths() const override { return m_params.stringColumns.empty(); }
    void setTextLengths(const QVector<TextLength> &longest) override;
    static const ParamTable<WriteSasXptParams> &paramTable() { return writeSasXptParamTable(); }
};

} // namespace corvanta
