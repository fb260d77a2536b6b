#include "engine/graph_links.h"

#include <algorithm>
#include <numeric>

namespace corvanta {

int highestLinkedPin(const CorvantaGraph &graph, const QString &id)
{
    int highest = -1;
    for (const CorvantaGraph::Link &link : graph.links) {
        if (link.to.action == id) {
            highest = qMax(highest, link.to.pin);
        }
    }
    return highest;
}

bool isLinked(const CorvantaGraph &graph, const CorvantaGraph::Pin &pin)
{
    return std::any_of(graph.links.begin(), graph.links.end(), [&](const auto &link) {
        return link.to.action == pin.action && link.to.pin == pin.pin;
    });
}

QVector<std::pair<int, int>> linkedNodes(const CorvantaGraph &graph,
                                         const std::vector<Listener> &listeners)
{
    QVector<std::pair<int, int>> links;
    for (const CorvantaGraph::Link &link : graph.links) {
        links.append({graph.indexOf(link.from.action), graph.indexOf(link.to.action)});
    }
    auto node = static_cast<int>(graph.actions.size());
    for (const Listener &listener : listeners) {
        links.append({graph.indexOf(listener.from.action), node++});
    }
    return links;
}

QVector<std::pair<int, int>> waitingNodes(const TargetOrder &order)
{
    QVector<std::pair<int, int>> waits;
    for (const QVector<QVector<int>> &lists : {order.startAfter, order.closeAfter}) {
        for (qsizetype later = 0; later < lists.size(); ++later) {
            for (const int earlier : lists[later]) {
                waits.append({earlier, static_cast<int>(later)});
            }
        }
    }
    return waits;
}

bool isForest(int nodes, const QVector<std::pair<int, int>> &links)
{
    std::vector<int> groups(static_cast<size_t>(nodes));
    std::iota(groups.begin(), groups.end(), 0);
    for (const auto &[from, to] : links) {
        const int first = groups[static_cast<size_t>(from)];
        const int second = groups[static_cast<size_t>(to)];
        if (first == second) {
            return false;
        }
        std::replace(groups.begin(), groups.end(), second, first);
    }
    return true;
}

} // namespace corvanta
