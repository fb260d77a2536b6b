#include "actions/write_report/write_report_params.h"

#include <algorithm>

namespace corvanta {

namespace {

std::vector<ReportChart> chartsFromXml(const XMLNode &action)
{
    std::vector<ReportChart> charts;
    int at = 0;
    for (XMLNode node = action.getChildNode("Chart", &at); !node.isEmpty();
         node = action.getChildNode("Chart", &at)) {
        ReportChart chart{qBound(0, xmltoi(node.getAttribute("type"), 0), kChartTypeCount - 1),
                          xmltoa(node.getAttribute("name"), {}),
                          {}};
        int axisAt = 0;
        for (XMLNode axis = node.getChildNode("axis", &axisAt); !axis.isEmpty();
             axis = node.getChildNode("axis", &axisAt)) {
            chart.axes.push_back({xmltoi(axis.getAttribute("pinIdx"), 0), axis.text()});
        }
        charts.push_back(std::move(chart));
    }
    return charts;
}

void saveCharts(const std::vector<ReportChart> &charts, std::wostream &out)
{
    ToXMLStringTool tool;
    for (const ReportChart &chart : charts) {
        out << L"  <Chart type='" << chart.type << L"' name='" << tool.toXML(chart.name) << L"'>\n";
        const size_t axes =
            std::min(chart.axes.size(), static_cast<size_t>(chartAxisCount(chart.type)));
        for (size_t i = 0; i < axes; ++i) {
            out << L"    <axis pinIdx='" << chart.axes[i].pinIdx << L"'>"
                << tool.toXML(chart.axes[i].column) << L"</axis>\n";
        }
        out << L"  </Chart>\n";
    }
}

} // namespace

int chartAxisCount(int type)
{
    constexpr int kBar = 0;
    constexpr int kLine = 2;
    constexpr int kBubble = 13;
    switch (type) {
    case kBar:
    case kLine:
        return 4; // with plus and minus
    case kBubble:
        return 3; // with sizes
    default:
        return 2;
    }
}

const ParamTable<WriteReportParams> &writeReportParamTable()
{
    using P = WriteReportParams;
    static const ParamTable<P> table{
        number("nPinIn", &P::nPinIn)
            .range(1, 1000)
            .always()
            .label("Number of input pins")
            .meaning("Tables that feed the charts."),
        text("output", &P::output)
            .outputFile()
            .always()
            .label("Document")
            .meaning("Document to write (.xlsx, .docx or .pptx)."),
        text("template", &P::templateName)
            .inputFile()
            .always()
            .label("Template")
            .meaning("Document with the charts; a name that starts with > is one of the templates "
                     "that come along."),
        structure("Chart", &P::charts, chartsFromXml, saveCharts)
            .label("Charts")
            .meaning("One Chart (type, name of its [[KOBData name]] tag) per series, with one axis "
                     "(pinIdx and a column name) for the categories, the values and what else the "
                     "type has."),
    };
    return table;
}

} // namespace corvanta
