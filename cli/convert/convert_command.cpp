// convert: makes a graph of readers, actions on rows and a writer, and runs it.
#include "cli/commands.h"
#include "cli/convert/file_arguments.h"
#include "cli/convert/pipeline.h"
#include "cli/convert/tables_command.h"
#include "cli/print/output.h"
#include "cli/session.h"
#include "corvanta/action_registry.h"
#include "corvanta/main_ui.h"

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A user may not expect that an input changes. The input is replaced only when it has been read.
void warnOfReplacedInput(const CommandLine &line)
{
    const QString name = inputThatIsOutput(line);
    if (!name.isEmpty()) {
        MainUI::addLog(MainUI::Warning,
                       u"Warning: the input '%1' is also the output, which replaces it when the "
                       "run is complete"_s.arg(name));
    }
}

constexpr OptionInfo kWriteOptions[] = {
    {"--no-clobber", "", "fail if OUTPUT exists"},
    {"--keep-partial", "",
     "after an error or an interrupt, keep the rows before it (the status is still that of the "
     "failure)"},
    {"--print-graph", "", "print the graph instead of running it"},
};

} // namespace

CommandOptions convertOptions()
{
    CommandOptions options = pipelineOptions();
    options.groups << OptionGroup{"How to write", kWriteOptions};
    options.arguments = 2;
    options.hasMoreArguments = true;
    options.wrongArguments = u"an input and an output file are required"_s;
    return Session::options(options);
}

CommandResult<void> convertCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    ActionRegistry registry;
    registry.loadAll();
    if (isFolderTarget(line)) {
        return convertTables(line, registry, session->get());
    }
    const auto graph = makePipeline(line, registry);
    if (!graph) {
        return graph.fault();
    }
    // The printed graph also has what was derived from the input: levels and tables.
    if (line.has(u"--print-graph"_s)) {
        printBytes(graph->toXml());
        return {};
    }
    if (auto checked = checkClobber(line, line.arguments.last()); !checked) {
        return checked;
    }
    warnOfReplacedInput(line);
    RunOptions options;
    options.keepPartial = line.has(u"--keep-partial"_s);
    return (*session)->run(*graph, registry, std::move(options));
}
