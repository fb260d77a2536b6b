// Loads graphs for run and check: variables, the file or standard input, validation.
#include "cli/run/loaded_graph.h"

#include "base/nearest_name.h"
#include "base/system_error.h"
#include "cli/session.h"
#include "corvanta/global_parameters.h"
#include "corvanta/main_ui.h"

#include <QDir>
#include <QFile>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// What determines the files of a graph.
constexpr OptionInfo kGraphOptions[] = {
    {"--set", "NAME=VALUE", "set a graph variable (repeatable); overrides the graph's value"},
    {"--out-dir", "DIR",
     "folder for relative output names (default: the graph's folder); created by a run if it is "
     "missing"},
    {"--name", "FILE", "for -: the name for messages; relative names are relative to its folder"},
};
constexpr OptionInfo kGraphRunOptions[] = {
    {"--compression", "LEVEL",
     "compression of packages: isal-2 (fast, the default), isal-3, zlib-1 to zlib-9 (smallest)"},
    {"--strict", "", "unknown names and wrong values in GRAPH are errors, not warnings"},
};

/// The variables of `--set NAME=VALUE` and `more`; of equal names the last one counts.
CommandResult<LoadedGraph::Variables> variablesOf(const QStringList &assignments,
                                                  const LoadedGraph::Variables &more)
{
    LoadedGraph::Variables variables;
    for (const QString &text : assignments) {
        const auto assignment = Assignment::parse(text);
        if (!assignment) {
            return assignment.fault();
        }
        if (more.contains(assignment->name)) {
            return badUsage(u"--set %1: --inputs sets the variable '%1'"_s.arg(assignment->name));
        }
        variables.insert(assignment->name, assignment->value);
    }
    variables.insert(more);
    return variables;
}

/// A variable that the graph does not use is a misspelled one. Returns a usage error then.
CommandResult<void> checkUse(const QStringList &assignments, const CorvantaGraph &graph)
{
    const QStringList used = graph.usedVariables();
    for (const QString &text : assignments) {
        const auto given = Assignment::parse(text); // was parsed before
        if (given && !used.contains(given->name)) {
            return badUsage(u"--set %1: the graph does not use the variable '%1'%2"_s.arg(
                given->name, nearestNameHint(given->name, used)));
        }
    }
    return {};
}

/// Explains why a variable is unknown: the graph is for many inputs, and none is named.
void logMissingInput(const CorvantaGraph &graph, const LoadedGraph::Variables &given)
{
    const QStringList used = graph.usedVariables();
    for (const QString &name : {u"input"_s, u"inputStem"_s, u"inputIndex"_s}) {
        if (used.contains(name) && !given.contains(name) && !graph.variables.contains(name)) {
            MainUI::addLog(MainUI::Error,
                           u"Error: the graph uses ${%1}: name its input files with --inputs LIST, "
                           "or set the variable with --set %1=VALUE"_s.arg(name));
            return;
        }
    }
    for (const QString &name : {u"inputFirstRow"_s, u"inputRowCount"_s, u"inputPart"_s}) {
        if (used.contains(name) && !given.contains(name) && !graph.variables.contains(name)) {
            MainUI::addLog(
                MainUI::Error,
                u"Error: the graph uses ${%1}: divide its input files with --inputs LIST "
                "--split-rows N, or set the variable with --set %1=VALUE"_s.arg(name));
            return;
        }
    }
}

/// Reads the graph file of `line`, "-" being standard input. The fault is a usage error; what is
/// wrong with the file is in the graph.
CommandResult<CorvantaGraph::Loaded> readGraph(const CommandLine &line)
{
    const QString &file = line.arguments[0];
    if (file != "-"_L1) {
        return line.values.contains(u"--name"_s)
                   ? badUsage(u"--name needs \"-\" as the graph"_s)
                   : CommandResult<CorvantaGraph::Loaded>(CorvantaGraph::load(file));
    }
    QFile input;
    static_cast<void>(input.open(stdin, QIODevice::ReadOnly)); // empty if it cannot be read
    const QString name = line.value(u"--name"_s, u"standard input"_s);
    constexpr qint64 kMaxBytes = 256LL << 20; // as of a file; what is cut is not well-formed
    return CorvantaGraph::parse(input.read(kMaxBytes), name);
}

} // namespace

std::span<const OptionInfo> graphOptions()
{
    return kGraphOptions;
}

std::span<const OptionInfo> graphRunOptions()
{
    return kGraphRunOptions;
}

CommandResult<std::unique_ptr<LoadedGraph>> LoadedGraph::load(const CommandLine &line,
                                                              const Variables &more)
{
    const QStringList assignments = line.values.value(u"--set"_s);
    auto variables = variablesOf(assignments, more);
    if (!variables) {
        return variables.fault();
    }
    auto loaded = std::make_unique<LoadedGraph>();
    loaded->variables = *std::move(variables);
    loaded->registry.loadAll();
    auto read = readGraph(line);
    if (!read) {
        return read.fault();
    }
    auto &graph = *read;
    // A file that cannot be parsed has no graph to validate; its problems are logged alike.
    const CorvantaGraph::Problems problems =
        graph ? graph->validate(loaded->registry, loaded->variables) : graph.fault().code;
    loaded->isValid = !Session::logProblems(problems);
    if (!graph) {
        return Fault{kUsage};
    }
    loaded->graph = *std::move(graph);
    loaded->outDir = line.value(u"--out-dir"_s, QString());
    loaded->compression = line.value(u"--compression"_s, QString());
    if (const auto used = checkUse(assignments, loaded->graph); !used) {
        return used.fault();
    }
    if (!loaded->isValid) {
        logMissingInput(loaded->graph, loaded->variables);
    }
    return loaded;
}

CommandResult<std::unique_ptr<LoadedGraph>> LoadedGraph::loadForRun(const CommandLine &line,
                                                                    const Variables &more)
{
    auto loaded = load(line, more);
    if (!loaded || !(*loaded)->isValid) {
        return loaded ? Fault{kUsage} : loaded.fault();
    }
    const CorvantaGraph::Problems problems =
        (*loaded)->graph.findMistakes((*loaded)->registry, (*loaded)->variables);
    const bool isStrict = line.has(u"--strict"_s);
    if (Session::logProblems(problems, [&](const auto &problem) {
            return isStrict && problem.kind == CorvantaGraph::Problem::Kind::Mistake;
        })) {
        return Fault{kUsage};
    }
    return loaded;
}

RunOptions LoadedGraph::runOptions() const
{
    RunOptions options;
    options.variables = variables;
    options.outDir = outDir;
    options.compression = compression;
    return options;
}

CorvantaGraph::Problems LoadedGraph::conflicts() const
{
    return Run(graph, registry, runOptions()).problems(); // never started
}

QString LoadedGraph::absoluteOutDir() const
{
    GlobalParameters global;
    graph.applyTo(&global, variables, outDir);
    return global.outDir();
}

CommandResult<void> LoadedGraph::createOutDir() const
{
    if (outDir.isEmpty() || QDir().mkpath(outDir)) {
        return {};
    }
    return Fault{kFailed, u"cannot create the folder '%1' of --out-dir: %2"_s.arg(
                              outDir, SystemError::ofLastCall().text())};
}
