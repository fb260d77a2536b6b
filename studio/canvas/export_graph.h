// Writes the picture of a graph.
#pragma once
#include <QString>

namespace corvanta::studio {

class GraphScene;

/// Write the whole graph as SVG, PNG or PDF, after the extension of `file`; in light colours.
/// Returns false with the reason. Threads: the GUI thread.
bool exportGraph(GraphScene &scene, const QString &file, QString *why);

} // namespace corvanta::studio
