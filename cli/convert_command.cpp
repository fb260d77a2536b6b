// convert: makes a graph of a reader and a writer and runs it.
#include "commands.h"
#include "file_types.h"
#include "input_graph.h"
#include "session.h"

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// Makes the graph that reads the input and writes the output.
CommandResult<CorvantaGraph> makeGraph(const CommandLine &line, const ActionRegistry &registry)
{
    const QString outputId = u"output"_s;
    const auto writer = makeFileAction(registry, FileFormat::Write, line.arguments[1],
                                       line.values.value(u"--writer"_s));
    if (!writer) {
        return writer.fault();
    }
    // Not null: makeFileAction() chooses among actions that have parameters.
    auto *const parameters = dynamic_cast<ActionParameters *>(writer->get());
    CorvantaGraph graph;
    const auto rows =
        addInput(line, line.arguments[0], registry, &graph, ReadExtent::Whole, parameters);
    if (!rows) {
        return rows.fault();
    }
    if (const auto added = addAction(&graph, outputId, **writer); !added) {
        return added.fault();
    }
    graph.links.append(CorvantaGraph::Link{{*rows, 0}, {outputId, 0}});
    return graph;
}

} // namespace

CommandOptions convertOptions()
{
    CommandOptions options = Session::options(inputOptions());
    options.withValue << u"--writer"_s;
    options.flags << u"--print-graph"_s;
    options.arguments = 2;
    options.wrongArguments = u"an input and an output file are required"_s;
    return options;
}

CommandResult<void> convertCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    const auto graph = makeGraph(line, registry);
    if (!graph) {
        return graph.fault();
    }
    // The printed graph also has what was derived from the input: levels and tables.
    if (line.has(u"--print-graph"_s)) {
        std::fputs(graph->toXml().constData(), stdout);
        return {};
    }
    return (*session)->run(*graph, registry, {});
}
