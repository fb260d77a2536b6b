// "run --inputs": runs a graph once for each input of a shard.
#pragma once
#include "cli/batch/input_list.h"
#include "cli/batch/journal.h"
#include "cli/run/loaded_graph.h"
#include "cli/session.h"

/// The options --inputs to --fail-fast, of run; check has the first of them.
std::span<const OptionInfo> manyInputsOptions();

/// A graph with the inputs that it is to be run for.
struct BatchGraph
{
    QVector<InputFile> inputs;
    std::unique_ptr<LoadedGraph> loaded; ///< with the variables of the first input

    using Loader = decltype(&LoadedGraph::load);
    /// Read the list of --inputs and, with a function of LoadedGraph, the graph of `line`. The
    /// fault is a usage error, also for a graph that has no ${input}, and for two inputs that would
    /// write one file. A graph that is not valid is not examined further.
    static CommandResult<BatchGraph> load(const CommandLine &line, Loader loader);

    /// The files that the run of an input writes.
    QStringList outputsOf(const InputFile &input) const;
    /// Those of all inputs, or of the graph if there are none.
    QStringList outputs() const;
    /// For the journal.
    const RunIdentity &identity() const { return m_identity; }
    /// The absolute name of the graph file.
    QString graphFile() const;
    /// The folder of --journal, else NAME.journal in the folder of the outputs.
    QString journalFolder(const CommandLine &line) const;

    /// `graph` is valid, or there are no inputs.
    BatchGraph(QVector<InputFile> files, std::unique_ptr<LoadedGraph> graph);

private:
    RunIdentity m_identity;
};

/// Run the shard of `line`. The fault is that of the worst run.
CommandResult<void> runInputs(const CommandLine &line, Session &session);
