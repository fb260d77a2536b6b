// What writeReport says about data that is not, or not unchanged, in the charts.
#include "actions/write_report/write_report.h"

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// "c:cat" of a type, as people know it from the files.
QString axisName(ChartType type, size_t axis)
{
    return u"c:"_s + QString::fromLatin1(charts::axisElements(type)[axis]);
}

/// Whether the series of the tag has the element of this axis.
bool hasAxis(const charts::ChartTag &tag, size_t axis)
{
    return std::any_of(tag.axes.begin(), tag.axes.end(), [&](const charts::AxisPlace &place) {
        return static_cast<size_t>(place.axis) == axis;
    });
}

} // namespace

void ActionWriteReport::reportAxes(const charts::ChartTag &tag, const ReportChart &chart)
{
    const size_t count = charts::axisElements(tag.type).size();
    for (size_t axis = 0; axis < std::max(count, chart.axes.size()); ++axis) {
        const bool isGiven = axis < chart.axes.size() && !chart.axes[axis].column.isEmpty();
        const bool isThere = hasAxis(tag, axis);
        if (isGiven && !isThere) {
            warn(
                u"Warning: the series of the tag '%1' has no element for the column '%2', which is not written\n"_s
                    .arg(tag.reference, chart.axes[axis].column));
        }
        if (!isGiven && isThere) {
            warn(
                u"Warning: the Chart '%1' has no column for the axis %2, which keeps the data of the template\n"_s
                    .arg(tag.reference, axisName(tag.type, axis)));
        }
    }
}

void ActionWriteReport::reportValues(const charts::ChartTag &tag, const ReportChart &chart,
                                     const charts::SeriesReport &found)
{
    if (found.gaps.count > 0) {
        warn(
            u"Warning: %1 points of the tag '%2' are left out, because another cell of their row is empty; the first is in row %3\n"_s
                .arg(QString::number(found.gaps.count), tag.reference,
                     QString::number(found.gaps.firstIndex + 1)));
    }
    for (size_t axis = 0; axis < found.notNumbers.size(); ++axis) {
        const charts::ValueCount &bad = found.notNumbers[axis];
        if (bad.count > 0) {
            warn(
                u"Warning: %1 values of the column '%2' are not numbers and are 0 in the chart of the tag '%3'; the first is in row %4. Give the series texts in the template to keep them\n"_s
                    .arg(QString::number(bad.count), chart.axes[axis].column, tag.reference,
                         QString::number(bad.firstIndex + 1)));
        }
    }
}

} // namespace corvanta
