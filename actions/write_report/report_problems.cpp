// The template decides about the type of a chart, and so about its axes: columns of a Chart that
// the type does not have are not written.
#include "actions/write_report/report_problems.h"

#include <QCoreApplication>

#include <algorithm>
#include <set>

namespace corvanta {

namespace {

using Problems = std::vector<ReportProblem>;

/// A problem with the text `text` and its placeholders. `text` is marked for translation.
template <class... Values>
ReportProblem reportProblem(const char *text, bool isError, const Values &...values)
{
    return {QString::fromUtf8(text).arg(values...),
            QCoreApplication::translate("Problems", text).arg(values...), isError};
}

/// Whether the series of the tag has the element of this axis.
bool hasAxis(const charts::ChartTag &tag, size_t axis)
{
    return std::any_of(tag.axes.begin(), tag.axes.end(), [&](const charts::AxisPlace &place) {
        return static_cast<size_t>(place.axis) == axis;
    });
}

/// Columns without an element, and elements without a column.
void checkAxes(const charts::ChartTag &tag, const ReportChart &chart, Problems *problems)
{
    const auto elements = charts::axisElements(tag.type);
    for (size_t axis = 0; axis < std::max(elements.size(), chart.axes.size()); ++axis) {
        const bool isGiven = axis < chart.axes.size() && !chart.axes[axis].column.isEmpty();
        const bool isThere = hasAxis(tag, axis);
        if (isGiven && !isThere) {
            problems->push_back(reportProblem(
                QT_TRANSLATE_NOOP("Problems", "Warning: the series of the tag '%1' has no element "
                                              "for the column '%2', which is not written\n"),
                false, tag.reference, chart.axes[axis].column));
        }
        if (!isGiven && isThere) {
            problems->push_back(reportProblem(
                QT_TRANSLATE_NOOP("Problems", "Warning: the Chart '%1' has no column for the axis "
                                              "c:%2, which keeps the data of the template\n"),
                false, tag.reference, QString::fromLatin1(elements[axis])));
        }
    }
}

/// Why a run ignores a tag; null if it does not, or if the tag repeats the one of its series:
/// names are often stored twice.
const char *ignoredText(const charts::ChartTag &tag)
{
    switch (tag.use) {
    case charts::TagUse::NoChart:
        return QT_TRANSLATE_NOOP("Problems", "\nwarning: couldn't find chart type for tag %1");
    case charts::TagUse::NoValues:
        return QT_TRANSLATE_NOOP("Problems", "\nwarning: couldn't find y-Axis for tag %1");
    case charts::TagUse::Split:
        return QT_TRANSLATE_NOOP("Problems", "Warning: the tag '%1' is divided by formatting and "
                                             "is ignored: type it again in one piece\n");
    case charts::TagUse::Repeated:
    case charts::TagUse::Series:
        break;
    }
    return nullptr;
}

void checkTag(const charts::ChartTag &tag, const std::vector<ReportChart> &charts,
              const QString &name, Problems *problems)
{
    if (tag.use != charts::TagUse::Series) {
        if (const char *const text = ignoredText(tag); text != nullptr) {
            problems->push_back(reportProblem(text, false, tag.reference));
        }
    } else if (const ReportChart *chart = chartOf(charts, tag.reference); chart != nullptr) {
        checkAxes(tag, *chart, problems);
    } else {
        problems->push_back(reportProblem(
            QT_TRANSLATE_NOOP(
                "Problems",
                "\nERROR: The template file '%1' contains a new un-initialized tag named '%2'\n"),
            true, name, tag.reference));
    }
}

/// Charts whose data is not written.
void checkUnused(const std::set<QString> &used, const std::vector<ReportChart> &charts,
                 const QString &name, Problems *problems)
{
    for (const ReportChart &chart : charts) {
        if (!used.contains(chart.name)) {
            problems->push_back(reportProblem(
                QT_TRANSLATE_NOOP("Problems", "Warning: the template file '%1' has no tag for the "
                                              "Chart '%2': its data is not written\n"),
                false, name, chart.name));
        }
    }
}

} // namespace

const ReportChart *chartOf(const std::vector<ReportChart> &charts, const QString &reference)
{
    const auto found = std::find_if(charts.begin(), charts.end(), [&](const ReportChart &chart) {
        return chart.name == reference;
    });
    return found == charts.end() ? nullptr : &*found;
}

Problems repeatedCharts(const std::vector<ReportChart> &charts)
{
    Problems problems;
    std::set<QString> names;
    for (const ReportChart &chart : charts) {
        // Tags find their Chart by name, so that a later one of the same name is never found.
        if (!names.insert(chart.name).second) {
            problems.push_back(reportProblem(
                QT_TRANSLATE_NOOP(
                    "Problems",
                    "Warning: the tag '%1' has several Charts; only the first is used\n"),
                false, chart.name));
        }
    }
    return problems;
}

Problems unknownPins(const std::vector<ReportChart> &charts, int pins)
{
    Problems problems;
    for (const ReportChart &chart : charts) {
        for (const ChartAxis &axis : chart.axes) {
            // An axis without a column keeps the data of the template, whatever its pin is.
            if (!axis.column.isEmpty() && (axis.pinIdx < 0 || axis.pinIdx >= pins)) {
                problems.push_back(reportProblem(
                    QT_TRANSLATE_NOOP("Problems",
                                      "Error: the axis '%1' of the Chart '%2' has the input "
                                      "pin %3; allowed: a whole number from 0 to %4\n"),
                    true, axis.column, chart.name, QString::number(axis.pinIdx),
                    QString::number(pins - 1)));
            }
        }
    }
    return problems;
}

Problems tagProblems(const TemplateCharts &found, const std::vector<ReportChart> &charts,
                     const QString &name)
{
    Problems problems;
    for (const QString &member : found.otherEncodings) {
        problems.push_back(reportProblem(
            QT_TRANSLATE_NOOP("Problems",
                              "Warning: the part '%1' of the template is not UTF-8 text: its tags "
                              "are ignored. Save the template again with an office program\n"),
            false, member));
    }
    // A tag may mark several series; its Chart is used if one of them can be filled.
    std::set<QString> used;
    for (const ChartPart &part : found.parts) {
        for (const charts::ChartTag &tag : part.tags) {
            checkTag(tag, charts, name, &problems);
            if (tag.use == charts::TagUse::Series) {
                used.insert(tag.reference);
            }
        }
    }
    if (found.parts.empty()) {
        problems.push_back(reportProblem(
            QT_TRANSLATE_NOOP(
                "Problems",
                "\nwarning: couldn't find any tag to replace ([[KOBData <reference>]]) in file %1"),
            false, name));
    } else {
        checkUnused(used, charts, name, &problems);
    }
    return problems;
}

} // namespace corvanta
