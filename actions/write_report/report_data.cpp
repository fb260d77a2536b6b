// Axes name a pin and a column. Equal sources share one list of texts, so that a column with the
// categories of many series is in memory once.
#include "actions/write_report/report_data.h"

#include <algorithm>

namespace corvanta {

ReportData::ReportData(const std::vector<ReportChart> &reports)
{
    for (const ReportChart &chart : reports) {
        for (const ChartAxis &axis : chart.axes) {
            if (!axis.column.isEmpty() && find(axis) == nullptr) {
                m_columns.push_back(std::make_unique<Column>(Column{axis}));
            }
        }
    }
}

ReportData::Column *ReportData::find(const ChartAxis &source) const
{
    const auto found = std::find_if(m_columns.begin(), m_columns.end(),
                                    [&](const auto &column) { return column->source == source; });
    return found == m_columns.end() ? nullptr : found->get();
}

const QString *ReportData::startPin(int pin, const OneRow &row)
{
    // addRow() is called once per row. Selecting the columns of this pin here saves it a search.
    m_ofPin.clear();
    for (const auto &column : m_columns) {
        if (column->source.pinIdx != pin) {
            continue;
        }
        column->index = row.getIndexOfColumn(column->source.column);
        if (column->index < 0) {
            return &column->source.column;
        }
        m_ofPin.push_back(column.get());
    }
    return nullptr;
}

void ReportData::addRow(const OneRow &row)
{
    for (Column *column : m_ofPin) {
        column->values.append(row.textView(column->index));
    }
}

charts::SeriesValues ReportData::valuesOf(const ReportChart &chart, ChartType type) const
{
    charts::SeriesValues values{};
    // Other columns of the Chart would leave gaps in a series that does not show them.
    const size_t axes = std::min(chart.axes.size(), charts::axisElements(type).size());
    for (size_t i = 0; i < axes; ++i) {
        const Column *column = find(chart.axes[i]);
        // An axis without a column keeps what the template has.
        values[i] = column == nullptr ? nullptr : &column->values;
    }
    return values;
}

} // namespace corvanta
