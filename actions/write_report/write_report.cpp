#include "actions/write_report/write_report.h"

namespace corvanta {

ActionWriteReport::ActionWriteReport(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteReportEntry, saved, parameters)
{
}

void ActionWriteReport::addPinIn()
{
    ActionItem::addPinIn();
    // The host decides whether there is another pin.
    m_params.nPinIn = pinInCount();
}

void ActionWriteReport::removePinIn()
{
    // The parameter allows no action without a pin.
    if (m_params.nPinIn == 1) {
        return;
    }
    ActionItem::removePinIn();
    --m_params.nPinIn;
    // An axis without a column has no data; the chart itself stays.
    for (ReportChart &chart : m_params.charts) {
        for (ChartAxis &axis : chart.axes) {
            if (axis.pinIdx >= m_params.nPinIn) {
                axis = {};
            }
        }
    }
}

} // namespace corvanta
