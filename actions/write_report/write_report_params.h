// The parameters of writeReport.
#pragma once
#include "corvanta/param_children.h"

#include <vector>

namespace corvanta {

/// Where the data of one axis comes from, an `axis` element.
struct ChartAxis
{
    int pinIdx = 0;
    QString column;
    bool operator==(const ChartAxis &) const = default;
};

/// The element of a chart that encloses its series.
enum class ChartType {
    Bar,
    Bar3D,
    Line,
    Line3D,
    Pie,
    OfPie,
    Pie3D,
    Area,
    Area3D,
    Scatter,
    Stock,
    Surface3D,
    Doughnut,
    Bubble,
    Radar
};

/// How many axes charts of a type use data for.
int chartAxisCount(ChartType type);

/// The data of one series, a `Chart` element.
struct ReportChart
{
    ChartType type = ChartType::Bar;
    QString name; ///< reference of the tag in the template
    /// Categories, values, bubble sizes, plus and minus error bars, as far as the type has them.
    std::vector<ChartAxis> axes;
    bool operator==(const ReportChart &) const = default;
};

struct WriteReportParams
{
    int nPinIn = 1;
    QString output;
    QString templateName;
    std::vector<ReportChart> charts;
};

const ParamTable<WriteReportParams> &writeReportParamTable();

} // namespace corvanta
