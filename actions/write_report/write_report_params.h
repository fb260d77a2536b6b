// The parameters of writeReport.
//
// A template marks each of its charts with a tag. A `Chart` element names a tag and the data of one
// series; its axes name the pins and columns that the data comes from.
#pragma once
#include "codecs/charts/chart_kinds.h"
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

using charts::ChartType;

/// Where the data of one axis comes from, an `axis` element.
struct ChartAxis
{
    /// Number of the input pin, from 0.
    int pinIdx = 0;
    /// Name of a column of that pin; empty: no data.
    QString column;
    bool operator==(const ChartAxis &) const = default;
};

/// The data of one series, a `Chart` element.
struct ReportChart
{
    /// For people: a run takes the type from the template.
    ChartType type = ChartType::Bar;
    /// The NAME of the tag [[KOBData NAME]] in the template.
    QString name;
    /// Categories, values, bubble sizes, plus and minus error bars, as far as the type has them.
    /// There may be fewer. More are kept, but not written, because the template may be another one
    /// in the next run.
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
    /// Series named by their tags get the references as names.
    bool cleanTags = false;
    /// One per series.
    std::vector<ReportChart> charts;
};

/// Attributes of `writeReport`, then its child elements.
const ParamTable<WriteReportParams> &writeReportParamTable();

} // namespace corvanta
