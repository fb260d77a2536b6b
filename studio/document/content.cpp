// A state of a graph as the host knows it.
#include "studio/document/content.h"

#include <algorithm>
#include <cmath>

namespace corvanta::studio {

namespace {

double canvasCoordinate(double coordinate)
{
    constexpr double kFarthest = 1e6;
    const double inside = std::clamp(coordinate, -kFarthest, kFarthest);
    return std::isnan(coordinate) ? 0 : std::round(inside);
}

} // namespace

QPointF canvasPosition(QPointF position)
{
    return {canvasCoordinate(position.x()), canvasCoordinate(position.y())};
}

// Documents keep a table of the indexes; this is for states that are being made.
int Content::indexOf(const QString &id) const
{
    const auto found = std::find_if(nodes.begin(), nodes.end(),
                                    [&](const NodePtr &node) { return node->id == id; });
    return found == nodes.end() ? -1 : static_cast<int>(found - nodes.begin());
}

// An invalid graph may have a link twice; the first one counts.
int Content::indexOf(const LinkRef &link) const
{
    const auto found = std::ranges::find(wires, link, &Wire::ends);
    return found == wires.end() ? -1 : static_cast<int>(found - wires.begin());
}

// Cheap: texts and elements are shared, not copied.
CorvantaGraph Content::graph() const
{
    CorvantaGraph graph;
    graph.variables = variables;
    graph.actions.reserve(nodes.size());
    for (const NodePtr &node : nodes) {
        graph.actions.append(CorvantaGraph::Action{node->id, node->element, node->position.x(),
                                                   node->position.y(), node->comment});
    }
    graph.links.reserve(wires.size());
    for (const Wire &wire : wires) {
        const auto &[from, to] = wire.ends;
        graph.links.append(CorvantaGraph::Link{{from.action, from.pin}, {to.action, to.pin}});
    }
    return graph;
}

} // namespace corvanta::studio
