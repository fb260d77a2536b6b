// run and check: load and validate a graph; run also adds the taps and runs it.
#include "commands.h"
#include "corvanta/action_registry.h"
#include "session.h"

#include <QDir>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A valid graph with the actions and variables that it was checked with.
struct LoadedGraph
{
    CorvantaGraph graph;
    ActionRegistry registry;
    QMap<QString, QString> variables;
};

/// The variables of `--set NAME=VALUE`; of equal names the last one counts.
CommandResult<QMap<QString, QString>> variablesOf(const QStringList &assignments)
{
    QMap<QString, QString> variables;
    for (const QString &text : assignments) {
        const auto assignment = Assignment::parse(text);
        if (!assignment) {
            return assignment.fault();
        }
        variables.insert(assignment->name, assignment->value);
    }
    return variables;
}

/// Loads and validates the graph file of `line`; logs its problems.
CommandResult<std::unique_ptr<LoadedGraph>> load(const CommandLine &line)
{
    auto variables = variablesOf(line.values.value(u"--set"_s));
    if (!variables) {
        return variables.fault();
    }
    auto loaded = std::make_unique<LoadedGraph>();
    loaded->variables = *std::move(variables);
    loaded->registry.loadAll();
    auto graph = CorvantaGraph::load(line.arguments[0]);
    // A file that cannot be parsed has no graph to validate; its problems are logged alike.
    const CorvantaGraph::Problems problems =
        graph ? graph->validate(loaded->registry, loaded->variables) : graph.fault().code;
    for (const CorvantaGraph::Problem &problem : problems) {
        MainUI::addLog(MainUI::Error, u"Error: "_s + problem.text);
    }
    if (!problems.isEmpty()) {
        return Fault{kUsage};
    }
    loaded->graph = *std::move(graph);
    return loaded;
}

/// A writeCSV for the file `name`; null if XML cannot contain a character of the name.
std::unique_ptr<ActionItem> makeTapWriter(const QString &name, const ActionRegistry &registry)
{
    ToXMLStringTool tool;
    const QString element = u"<writeCSV fileName='%1'/>"_s.arg(
        QString::fromWCharArray(tool.toXML(QDir::current().absoluteFilePath(name))));
    const auto saved = XMLNode::parse(element.toUtf8());
    // Without GlobalParameters: the name is absolute, and a "${" in it is no variable.
    return saved ? registry.create(*saved, nullptr) : nullptr;
}

/// The listener for `--tap ID:PIN=FILE.csv`: a writeCSV that reads the pin.
CommandResult<Listener> makeTap(const QString &text, const LoadedGraph &loaded)
{
    const auto tap = Assignment::parse(text);
    const auto pin = CorvantaGraph::parsePin(tap ? tap->name : QString());
    if (!pin || tap->value.isEmpty()) {
        return badUsage(u"'%1' is not of the form ID:PIN=FILE.csv"_s.arg(text));
    }
    if (!loaded.graph.hasOutputPin(loaded.registry, *pin)) {
        return badUsage(u"the graph has no output pin '%1' to tap"_s.arg(tap->name));
    }
    std::unique_ptr<ActionItem> writer = makeTapWriter(tap->value, loaded.registry);
    if (!writer) {
        return badUsage(u"the name '%1' contains invalid characters"_s.arg(tap->value));
    }
    return Listener{"tap "_L1 + tap->name, *pin, std::move(writer)};
}

/// The options of the run, with its taps. All taps are checked before the run starts.
CommandResult<RunOptions> optionsOfRun(const CommandLine &line, const LoadedGraph &loaded)
{
    RunOptions options;
    options.variables = loaded.variables;
    options.outDir = line.value(u"--out-dir"_s, QString());
    options.compression = line.value(u"--compression"_s, QString());
    for (const QString &text : line.values.value(u"--tap"_s)) {
        auto tap = makeTap(text, loaded);
        if (!tap) {
            return tap.fault();
        }
        options.listeners.push_back(*std::move(tap));
    }
    return options;
}

} // namespace

CommandOptions runOptions()
{
    return Session::options({{u"--set"_s, u"--out-dir"_s, u"--tap"_s, u"--compression"_s},
                             {},
                             1,
                             u"one graph file is required"_s});
}

CommandResult<void> runCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    const auto loaded = load(line);
    if (!loaded) {
        return loaded.fault();
    }
    auto options = optionsOfRun(line, **loaded);
    if (!options) {
        return options.fault();
    }
    return (*session)->run((*loaded)->graph, (*loaded)->registry, *std::move(options));
}

CommandOptions checkOptions()
{
    return {{u"--set"_s, u"--log-format"_s}, {}, 1, u"one graph file is required"_s};
}

CommandResult<void> checkCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    const auto loaded = load(line);
    if (!loaded) {
        return loaded.fault();
    }
    const CorvantaGraph &graph = (*loaded)->graph;
    std::printf("%s: %d actions, %d links: valid\n", qPrintable(line.arguments[0]),
                static_cast<int>(graph.actions.size()), static_cast<int>(graph.links.size()));
    return {};
}
