// The part of a graph that gives the rows of a pin, without the actions that write files.
//
// Threads: pure functions.
#pragma once
#include "corvanta/corvanta_graph.h"
#include "corvanta/engine_runner.h"

#include <QStringList>

namespace corvanta {
class ActionRegistry;
}

namespace corvanta::studio {

/// What is run to see the rows of a pin.
struct PreviewGraph
{
    CorvantaGraph graph;
    CorvantaGraph::Pin source; ///< the output pin to read
    /// The ids of actions that write files and are not run: they pass on every row of their input
    /// pin, so the rows are those before them.
    QStringList skipped;
};

/// `pin` is an input or an output pin. Nothing if no rows can reach it: it does not exist or has no
/// link.
std::optional<PreviewGraph> previewGraphOf(const CorvantaGraph &graph,
                                           const ActionRegistry &registry,
                                           const CorvantaGraph::Pin &pin,
                                           EngineRunner::PinType type);

/// Whether an action of the graph reads one of these files.
bool readsFiles(const CorvantaGraph &graph, const ActionRegistry &registry,
                const QStringList &files);

/// The name of an input that is not a file, such as a pipe; empty if there is none. What a preview
/// reads from it would be missing in a run. Looks up files, so call it in the background.
QString unrepeatableInput(const CorvantaGraph &graph, const ActionRegistry &registry);

/// A text that is equal for two graphs that give the same rows: positions and comments do not
/// count.
QByteArray contentKeyOf(const PreviewGraph &preview);

} // namespace corvanta::studio
