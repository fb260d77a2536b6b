// Aligns and distributes actions. All nodes have one size on the canvas, so corners suffice.
#include "studio/document/graph_document.h"

#include <algorithm>

namespace corvanta::studio {

namespace {

using Positions = QMap<QString, QPointF>;
using Alignment = GraphDocument::Alignment;

/// Whether an alignment changes the horizontal coordinates.
bool isAcross(Alignment alignment)
{
    return alignment == Alignment::Left || alignment == Alignment::Center ||
           alignment == Alignment::Right || alignment == Alignment::Columns;
}

/// The coordinate that is aligned.
double &coordinate(QPointF &point, bool isX)
{
    return isX ? point.rx() : point.ry();
}

/// Equal distances between neighbours; the outer ones stay.
void distribute(Positions *positions, bool isX)
{
    QStringList order = positions->keys();
    std::stable_sort(order.begin(), order.end(), [&](const QString &a, const QString &b) {
        return coordinate((*positions)[a], isX) < coordinate((*positions)[b], isX);
    });
    const double first = coordinate((*positions)[order.first()], isX);
    const double last = coordinate((*positions)[order.last()], isX);
    const double step = (last - first) / static_cast<double>(qMax<qsizetype>(1, order.size() - 1));
    for (qsizetype i = 0; i < order.size(); ++i) {
        coordinate((*positions)[order[i]], isX) = first + step * static_cast<double>(i);
    }
}

/// Give all the lowest, the highest or the middle coordinate.
void alignTo(Positions *positions, Alignment alignment, bool isX)
{
    double low = coordinate(positions->first(), isX);
    double high = low;
    for (QPointF &point : *positions) {
        low = qMin(low, coordinate(point, isX));
        high = qMax(high, coordinate(point, isX));
    }
    const bool isLow = alignment == Alignment::Left || alignment == Alignment::Top;
    const bool isHigh = alignment == Alignment::Right || alignment == Alignment::Bottom;
    for (QPointF &point : *positions) {
        coordinate(point, isX) = isLow ? low : isHigh ? high : (low + high) / 2;
    }
}

} // namespace

// One step, and none if nothing moves: move() compares the positions.
void GraphDocument::align(const QStringList &ids, Alignment alignment)
{
    Positions positions;
    for (const QString &id : ids) {
        if (contains(id)) {
            positions.insert(id, position(id));
        }
    }
    if (positions.size() < 2) {
        return;
    }
    if (alignment == Alignment::Columns || alignment == Alignment::Rows) {
        distribute(&positions, isAcross(alignment));
    } else {
        alignTo(&positions, alignment, isAcross(alignment));
    }
    move(positions);
}

} // namespace corvanta::studio
