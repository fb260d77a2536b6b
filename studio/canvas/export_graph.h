// Writes the picture of a graph.
#pragma once
#include "studio/document/graph_document.h"

namespace corvanta::studio {

class GraphScene;

/// Write the whole graph as SVG, PNG or PDF, after the extension of `file`; in light colours.
/// Threads: the GUI thread.
GraphDocument::FileResult<void> exportGraph(GraphScene &scene, const QString &file);

} // namespace corvanta::studio
