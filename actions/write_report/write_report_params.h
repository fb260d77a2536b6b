// writers/write_report_params.h
// The parameters of writeReport.
#pragma once
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

/// Where the data of one axis comes from, an `axis` element.
struct ChartAxis
{
    int pinIdx = 0;
    QString column;
    bool operator==(const ChartAxis &) const = default;
};

/// The data of one series, a `Chart` element.
struct ReportChart
{
    int type = 0; ///< row of the table of chart types
    QString name; ///< reference of the tag in the template
    std::vector<ChartAxis>
        axes; ///< categories, values, sizes, plus and minus: as far as the type has them
    bool operator==(const ReportChart &) const = default;
};

inline constexpr int kChartTypeCount = 15;
/// How many axes charts of a type take data for.
int chartAxisCount(int type);

struct WriteReportParams
{
    int nPinIn = 1;
    QString output;
    QString templateName;
    std::vector<ReportChart> charts;
};

const ParamTable<WriteReportParams> &writeReportParamTable();

} // namespace corvanta
