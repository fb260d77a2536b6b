// writeSAS: writes rows to a SAS data set (.sas7bdat).
//
// The action can be placed, edited, saved and linked; writing is not part of this version, and a
// run ends with an error (PendingAction).
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_sas/write_sas_params.h"

namespace corvanta {

extern const ActionEntry kWriteSasEntry;

class ActionWriteSAS final : public PendingAction<ActionWriteSAS, WriteSasParams>
{
public:
    ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters);
    bool needsTextLengths() const override { return m_params.stringColumns.empty(); }
    void setTextLengths(const QVector<TextLength> &longest) override;
    static const ParamTable<WriteSasParams> &paramTable() { return writeSasParamTable(); }
};

} // namespace corvanta
