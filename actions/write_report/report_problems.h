// What does not fit between the Charts of the parameters and the tags of a template.
//
// A run logs these problems before it writes, and "check" shows them without a run.
// Threads: pure functions.
#pragma once
#include "actions/write_report/chart_parts.h"
#include "actions/write_report/write_report_params.h"

#include <QString>

#include <vector>

namespace corvanta {

struct ReportProblem
{
    QString text;  ///< as a run logs it, with the severity at its beginning
    QString shown; ///< the same in the language of the user
    bool isError = false;
};

/// The Chart with this name; null if there is none. The first of several counts.
const ReportChart *chartOf(const std::vector<ReportChart> &charts, const QString &reference);

/// Several Charts of one name.
std::vector<ReportProblem> repeatedCharts(const std::vector<ReportChart> &charts);
/// Axes with data from an input pin that the action does not have; it has `pins`.
std::vector<ReportProblem> unknownPins(const std::vector<ReportChart> &charts, int pins);
/// Tags without a use or a Chart, Charts without a tag, and Charts with other axes than the tagged
/// series. `name` is that of the template.
std::vector<ReportProblem> tagProblems(const TemplateCharts &found,
                                       const std::vector<ReportChart> &charts, const QString &name);

} // namespace corvanta
