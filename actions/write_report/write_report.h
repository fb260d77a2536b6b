// writeReport: writes data of the input pins to the charts of an Office template.
//
// The action can be placed, edited, saved and linked; writing is not part of this version, and a
// run ends with an error (PendingAction). The number of pins is a parameter.
#pragma once
#include "actions/shared/pending_action.h"
#include "actions/write_report/write_report_params.h"

namespace corvanta {

extern const ActionEntry kWriteReportEntry;

class ActionWriteReport final : public PendingAction<ActionWriteReport, WriteReportParams>
{
public:
    ActionWriteReport(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteReportParams> &paramTable() { return writeReportParamTable(); }
    static int pinsInFor(const WriteReportParams &params) { return params.nPinIn; }

    /// Add a pin, if the action may have another one.
    void addPinIn() override;
    /// Remove the last pin and reset the axes that use its data. One pin always stays.
    void removePinIn() override;
};

} // namespace corvanta
