// Facts about the links of a graph that the engine needs.
#pragma once
#include "corvanta/corvanta_graph.h"
#include "corvanta/run.h"
#include "engine/target_order.h"

#include <QVector>

#include <utility>
#include <vector>

namespace corvanta {

/// The highest linked input pin of an action; -1 if there is none.
int highestLinkedPin(const CorvantaGraph &graph, const QString &id);

/// Whether a link leads to an input pin.
bool isLinked(const CorvantaGraph &graph, const CorvantaGraph::Pin &pin);

/// The links as indexes of nodes: first those of the graph, then those to the listeners.
QVector<std::pair<int, int>> linkedNodes(const CorvantaGraph &graph,
                                         const std::vector<Listener> &listeners);

/// The waits for actions that use the same file, as pairs like the links: (earlier, later).
QVector<std::pair<int, int>> waitingNodes(const TargetOrder &order);

/// Whether there is at most one way between any two of `nodes` nodes, whatever the direction of the
/// links. Then no producer depends on rows of another pin of its consumer, if `links` has the waits
/// for files too.
bool isForest(int nodes, const QVector<std::pair<int, int>> &links);

} // namespace corvanta
