// The columns that the charts of writeReport need, collected from its input pins.
//
// A column that several axes use is collected once. Threads: one at a time.
#pragma once
#include "actions/write_report/write_report_params.h"
#include "codecs/charts/series_writer.h"
#include "corvanta/one_row.h"

#include <memory>
#include <vector>

namespace corvanta {

/// The texts of all rows stay in memory, because a chart is written as a whole.
///
/// For each pin: startPin() with any row of it, then addRow() for all of its rows.
class ReportData
{
public:
    ReportData() = default;
    /// Prepare for the axes of `reports`.
    explicit ReportData(const std::vector<ReportChart> &reports);

    /// Find the columns of a pin in its rows. Returns the name of the first one that is missing;
    /// null if all are there.
    const QString *startPin(int pin, const OneRow &row);
    /// Add the cells of a row of the pin that was started last. Throws std::bad_alloc.
    void addRow(const OneRow &row);

    /// The values of a Chart by axis, for the axes that `type` has; null for an axis without a
    /// column. Valid as long as the data.
    charts::SeriesValues valuesOf(const ReportChart &chart, ChartType type) const;

private:
    struct Column
    {
        ChartAxis source;
        charts::ValueList values = {};
        int index = -1; // in the rows of the pin
    };
    Column *find(const ChartAxis &source) const;

    std::vector<std::unique_ptr<Column>> m_columns; // one per source
    std::vector<Column *> m_ofPin;                  // those of the pin that was started last
};

} // namespace corvanta
