// The kinds of charts whose series can be filled, and the elements that hold the data of a series.
//
// Elements: ECMA-376 part 1, 21.2.2 (DrawingML charts). Threads: pure functions.
#pragma once
#include <QByteArrayView>

#include <optional>
#include <span>

namespace corvanta::charts {

/// The element of a chart that encloses its series, such as "c:barChart". The numbers are those of
/// saved graphs and must not change.
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

/// The index, in axisElements(), of the values (y). Every series needs them; it can lack the
/// others.
inline constexpr int kValueAxis = 1;
/// The most axes that a type has.
inline constexpr int kMaxAxes = 4;

/// Local name of the chart's element: "barChart".
QByteArrayView chartElement(ChartType type);
/// The type whose element has this local name.
std::optional<ChartType> chartTypeOf(QByteArrayView local);
/// Local names of the elements with data, in the order of saved graphs: categories (or x), values
/// (or y), then bubble sizes, or plus and minus error bars, as far as the type has them.
std::span<const QByteArrayView> axisElements(ChartType type);

} // namespace corvanta::charts
