#include "actions/write_report/write_report_params.h"

// The lines are in the order of saved graphs: those of the action, of a chart, and of an axis.
namespace corvanta {

namespace {

/// Where the data of an axis comes from: attribute and content of an `axis` element.
const ParamTable<ChartAxis> &axisTable()
{
    static const ParamTable<ChartAxis> table{
        number("pinIdx", &ChartAxis::pinIdx)
            .always()
            .label("Input pin")
            .meaning("Number of the input pin with the data, from 0."),
        content("column", &ChartAxis::column)
            .label("Column")
            .meaning("Name of the column with the data."),
    };
    return table;
}

/// The number of a type is its place here; other numbers are read as the nearest type.
Param<ReportChart> chartType()
{
    return choice("type", &ReportChart::type,
                  {{ChartType::Bar, "bar"},
                   {ChartType::Bar3D, "3D bar"},
                   {ChartType::Line, "line"},
                   {ChartType::Line3D, "3D line"},
                   {ChartType::Pie, "pie"},
                   {ChartType::OfPie, "pie of pie"},
                   {ChartType::Pie3D, "3D pie"},
                   {ChartType::Area, "area"},
                   {ChartType::Area3D, "3D area"},
                   {ChartType::Scatter, "scatter"},
                   {ChartType::Stock, "stock"},
                   {ChartType::Surface3D, "3D surface"},
                   {ChartType::Doughnut, "doughnut"},
                   {ChartType::Bubble, "bubble"},
                   {ChartType::Radar, "radar"}})
        .range(0, static_cast<int>(ChartType::Radar))
        .always()
        .label("Type")
        .meaning("Type of the chart. A run uses that of the template.");
}

/// One series: a `Chart` element with its axes.
const ParamTable<ReportChart> &chartTable()
{
    static const ParamTable<ReportChart> table{
        chartType(),
        text("name", &ReportChart::name)
            .always()
            .label("Tag")
            .meaning("Reference of the tag [[KOBData reference]] in the template."),
        children("axis", &ReportChart::axes, axisTable())
            .label("Axes")
            .meaning("Data of the categories, the values, the bubble sizes, and the plus and minus "
                     "error bars, as far as the type has them."),
    };
    return table;
}

} // namespace

const ParamTable<WriteReportParams> &writeReportParamTable()
{
    using P = WriteReportParams;
    static const ParamTable<P> table{
        number("nPinIn", &P::nPinIn)
            .range(1, 1000)
            .always()
            .label("Number of input pins")
            .meaning("Number of tables that supply data for the charts."),
        text("output", &P::output)
            .outputFile()
            .required()
            .always()
            .label("Document")
            .meaning("Document to write (.xlsx, .docx or .pptx)."),
        text("template", &P::templateName)
            .inputFile()
            .required()
            .always()
            .label("Template")
            .meaning("Document with the charts; a name that starts with > is one of the included "
                     "templates."),
        flag("cleanTags", &P::cleanTags)
            .label("Clean tags")
            .meaning("Writes the reference of each tag in its place, so that a series named "
                     "[[KOBData Sales]] appears as Sales. A series whose name is a cell gets the "
                     "reference as its own name. Otherwise the tags stay visible."),
        // Child elements come after all attributes.
        children("Chart", &P::charts, chartTable())
            .label("Charts")
            .meaning("One Chart (type, and name of its [[KOBData name]] tag) per series, with one "
                     "axis (pinIdx and a column name) each for the categories, the values and the "
                     "other data of the type."),
    };
    return table;
}

} // namespace corvanta
