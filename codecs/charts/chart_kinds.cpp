#include "codecs/charts/chart_kinds.h"

#include <array>

namespace corvanta::charts {

namespace {

constexpr QByteArrayView kCategories[] = {"cat", "val"};
constexpr QByteArrayView kCategoriesAndErrors[] = {"cat", "val", "plus", "minus"};
constexpr QByteArrayView kPoints[] = {"xVal", "yVal"};
constexpr QByteArrayView kBubbles[] = {"xVal", "yVal", "bubbleSize"};

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
    for (size_t i = 0; i < kKinds.size(); ++i) {
        if (kKinds[i].element == local) {
            return static_cast<ChartType>(i);
        }
    }
    return std::nullopt;
}

std::span<const QByteArrayView> axisElements(ChartType type)
{
    return kindOf(type).axes;
}

} // namespace corvanta::charts
