// The elements of a chart type (ECMA-376 part 1, 21.2.2) and, in the series below it, those with
// data:
//
//   barChart, lineChart            cat  val  plus  minus     error bars have data of their own
//   pieChart, areaChart, ...       cat  val
//   scatterChart                   xVal yVal
//   bubbleChart                    xVal yVal bubbleSize
#include "codecs/charts/chart_kinds.h"

#include <algorithm>
#include <array>

namespace corvanta::charts {

namespace {

constexpr QByteArrayView kCategories[] = {"cat", "val"};
constexpr QByteArrayView kCategoriesAndErrors[] = {"cat", "val", "plus", "minus"};
constexpr QByteArrayView kPoints[] = {"xVal", "yVal"};
constexpr QByteArrayView kBubbles[] = {"xVal", "yVal", "bubbleSize"};

/// A chart's element and the elements with data in its series; the values are always second.
struct Kind
{
    QByteArrayView element;
    std::span<const QByteArrayView> axes;
};

/// In the order of ChartType.
constexpr std::array<Kind, 15> kKinds{{
    {"barChart", kCategoriesAndErrors},
    {"bar3DChart", kCategories},
    {"lineChart", kCategoriesAndErrors},
    {"line3DChart", kCategories},
    {"pieChart", kCategories},
    {"ofPieChart", kCategories},
    {"pie3DChart", kCategories},
    {"areaChart", kCategories},
    {"area3DChart", kCategories},
    {"scatterChart", kPoints},
    {"stockChart", kCategories},
    {"surface3DChart", kCategories},
    {"doughnutChart", kCategories},
    {"bubbleChart", kBubbles},
    {"radarChart", kCategories},
}};

const Kind &kindOf(ChartType type)
{
    return kKinds[static_cast<size_t>(type)];
}

} // namespace

QByteArrayView chartElement(ChartType type)
{
    return kindOf(type).element;
}

std::optional<ChartType> chartTypeOf(QByteArrayView local)
{
    const auto kind = std::find_if(kKinds.begin(), kKinds.end(),
                                   [&](const Kind &one) { return one.element == local; });
    return kind != kKinds.end() ? std::optional(static_cast<ChartType>(kind - kKinds.begin()))
                                : std::nullopt;
}

std::span<const QByteArrayView> axisElements(ChartType type)
{
    return kindOf(type).axes;
}

} // namespace corvanta::charts
