// writeReport: data of the input pins into the charts of an Office template.
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

    void addPinIn() override;
    /// The last pin goes; what it fed is left without data. One pin always stays.
    void removePinIn() override;
};

} // namespace corvanta
