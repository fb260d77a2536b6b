// The parameters of writeReport.
//
// A template marks each of its charts with a tag. A `Chart` element names a tag and the data of one
// series; its axes name the pins and columns that the data comes from.
#pragma once
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

/// Where the data of one axis comes from, an `axis` element.
struct ChartAxis
{
    /// Number of the input pin, from 0.
    int pinIdx = 0;
    /// Name of a column of that pin; empty: no data.
    QString column;
    bool operator==(const ChartAxis &) const = default;
};

/// The element of a chart that encloses its series. The numbers are those of saved graphs.
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

/// How many axes charts of a type use data for: 2 to 4.
int chartAxisCount(ChartType type);

/// The data of one series, a `Chart` element. It may have fewer axes than its type uses data for,
/// but not more.
struct ReportChart
{
    /// Decides how many axes have data.
    ChartType type = ChartType::Bar;
    /// The NAME of the tag [[KOBData NAME]] in the template.
    QString name;
    /// Categories, values, bubble sizes, plus and minus error bars, as far as the type has them.
    std::vector<ChartAxis> axes;
    bool operator==(const ReportChart &) const = default;
};

/// `nPinIn` and the pins of the action agree: addPinIn() and removePinIn() change both.
struct WriteReportParams
{
    /// Number of input pins, 1 to 1000.
    int nPinIn = 1;
    // Names of Office documents; the template is read and stays unchanged.
    QString output;
    /// A name that starts with > is one of the included templates.
    QString templateName;
    /// One per series.
    std::vector<ReportChart> charts;
};

/// Attributes of `writeReport`, then its child elements.
const ParamTable<WriteReportParams> &writeReportParamTable();

} // namespace corvanta
