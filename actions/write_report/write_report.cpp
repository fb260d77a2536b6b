#include "actions/write_report/write_report.h"

namespace corvanta {

ActionWriteReport::ActionWriteReport(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteReportEntry, saved, parameters)
{
}

void ActionWriteReport::addPinIn()
{
    ActionItem::addPinIn();
    m_params.nPinIn = pinInCount();
}

void ActionWriteReport::removePinIn()
{
    if (m_params.nPinIn == 1) {
        return;
    }
    ActionItem::removePinIn();
    --m_params.nPinIn;
    for (ReportChart &chart : m_params.charts) {
        for (ChartAxis &axis : chart.axes) {
            if (axis.pinIdx >= m_params.nPinIn) {
                axis = {};
            }
        }
    }
}

} // namespace corvanta
