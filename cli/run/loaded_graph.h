// The graph file of a command line, loaded and validated.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/run.h"

#include <memory>

/// The options that determine the files of a graph: --set, --out-dir, --name.
std::span<const OptionInfo> graphOptions();
/// The options of its runs: --compression, --strict.
std::span<const OptionInfo> graphRunOptions();

/// A graph with the actions, variables and output folder that it was checked with.
struct LoadedGraph
{
    CorvantaGraph graph;
    corvanta::ActionRegistry registry;
    QMap<QString, QString> variables; ///< of --set, and those that the caller has added
    QString outDir;                   ///< of --out-dir; empty: the graph's folder
    QString compression;              ///< of --compression
    bool isValid = false;

    using Variables = QMap<QString, QString>;

    /// Load and validate the graph file of `line`; log what makes it invalid. `more` are variables
    /// in addition to those of --set. A fault with a text is a usage error.
    static CommandResult<std::unique_ptr<LoadedGraph>> load(const CommandLine &line,
                                                            const Variables &more = {});
    /// The same for a run: an invalid graph is a fault, and names and values that a run ignores are
    /// logged.
    static CommandResult<std::unique_ptr<LoadedGraph>> loadForRun(const CommandLine &line,
                                                                  const Variables &more = {});

    /// What a run needs, without listeners.
    corvanta::RunOptions runOptions() const;
    /// The actions whose files exclude each other. Only for a valid graph.
    CorvantaGraph::Problems conflicts() const;
    /// The files that a run would write; see CorvantaGraph::outputs(). Only for a valid graph.
    QStringList outputs() const { return graph.outputs(registry, variables, outDir); }
    /// The absolute name of the folder of relative output names.
    QString absoluteOutDir() const;
    /// Create the folder of --out-dir, which a user expects after naming it.
    CommandResult<void> createOutDir() const;
};
