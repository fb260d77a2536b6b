// run and check: load and validate a graph; run also adds the taps and runs it.
#include "base/counted.h"
#include "cli/batch/input_runs.h"
#include "cli/commands.h"
#include "cli/file_types.h"
#include "cli/print/output.h"
#include "cli/problem_list.h"
#include "cli/run/loaded_graph.h"
#include "cli/session.h"
#include "cli/template_list.h"
#include "cli/visible_text.h"
#include "corvanta/action_registry.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr QLatin1StringView kTapWriter("writeCSV");

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
    if (loaded.registry.prototype(kTapWriter) == nullptr) {
        return badUsage(u"--tap needs the action '%1', which no module has"_s.arg(kTapWriter));
    }
    // Without GlobalParameters: the name is absolute, and a "${" in it is not a variable.
    auto writer =
        makeWriter(loaded.registry, kTapWriter, QDir::current().absoluteFilePath(tap->value), {});
    if (!writer) {
        return writer.fault();
    }
    return Listener{"tap "_L1 + tap->name, *pin, *std::move(writer)};
}

/// The options of the run, with its taps. All taps are checked before the run starts.
CommandResult<RunOptions> optionsOfRun(const CommandLine &line, const LoadedGraph &loaded)
{
    RunOptions options = loaded.runOptions();
    for (const QString &text : line.values.value(u"--tap"_s)) {
        auto tap = makeTap(text, loaded);
        if (!tap) {
            return tap.fault();
        }
        options.listeners.push_back(*std::move(tap));
    }
    return options;
}

/// The options that choose among inputs have no meaning without any.
CommandResult<void> rejectInputOptions(const CommandLine &line)
{
    const CommandOptions options{{OptionGroup{"", manyInputsOptions()}}};
    for (const QString &name : options.withValue() + options.flags()) {
        if (line.values.contains(name) || line.has(name)) {
            return badUsage(u"%1 needs --inputs"_s.arg(name));
        }
    }
    return {};
}

/// Prints the files that a run would write, for scripts: as they are, one per line.
void printOutputs(const QStringList &names, bool isJson)
{
    if (isJson) {
        printJson(QJsonDocument(QJsonArray::fromStringList(names)));
        return;
    }
    for (const QString &name : names) {
        printText(name + u'\n');
    }
}

/// The graph of `line`, for the inputs of --inputs if there are any.
CommandResult<BatchGraph> loadForCheck(const CommandLine &line)
{
    if (line.values.contains(u"--inputs"_s)) {
        return BatchGraph::load(line, LoadedGraph::load);
    }
    if (const auto misplaced = rejectInputOptions(line); !misplaced) {
        return misplaced.fault();
    }
    auto loaded = LoadedGraph::load(line, {});
    return loaded ? CommandResult<BatchGraph>(BatchGraph({}, *std::move(loaded))) : loaded.fault();
}

/// Logs all problems of the graph file and prints what was asked for, except the problems as JSON.
CommandResult<void> checkGraph(const CommandLine &line)
{
    const auto graph = loadForCheck(line);
    if (!graph) {
        return graph.fault();
    }
    const LoadedGraph &checked = *graph->loaded;
    const bool hasErrors = Session::logProblems(
        checked.graph.check(checked.registry, checked.variables, checked.outDir),
        [](const auto &problem) {
            using Kind = CorvantaGraph::Problem::Kind;
            return problem.kind != Kind::Hint && problem.kind != Kind::Idle;
        });
    const bool hasConflicts = checked.isValid && Session::logProblems(checked.conflicts());
    if (hasErrors || !checked.isValid || hasConflicts) {
        return Fault{kUsage};
    }
    const bool isJson = line.has(u"--json"_s);
    if (line.has(u"--list-outputs"_s)) {
        printOutputs(graph->outputs(), isJson);
    } else if (!isJson) {
        printText(u"%1: %2, %3: valid\n"_s.arg(
            visibleText(line.arguments[0]), counted(std::ssize(checked.graph.actions), u"action"_s),
            counted(std::ssize(checked.graph.links), u"link"_s)));
    }
    return {};
}

constexpr OptionInfo kTapOptions[] = {
    {"--tap", "ID:PIN=FILE.csv", "also write the rows of an output pin as CSV (repeatable)"},
};
constexpr OptionInfo kCheckOptions[] = {
    {"--list-outputs", "", "print the files that a run would write, one per line"},
    {"--template", "",
     "list the markers and chart tags of the Office template FILE, and those that a run does not "
     "find; '>NAME' is a template that the program includes (\"corvanta describe writeReport\" "
     "lists them)"},
    {"--json", "", "print the problems, the files or the markers as a JSON array"},
};

} // namespace

CommandOptions runOptions()
{
    return Session::options({{{"", graphOptions()},
                              {"", kTapOptions},
                              {"", graphRunOptions()},
                              {"Many inputs", manyInputsOptions()}},
                             1,
                             u"one graph file is required"_s});
}

CommandResult<void> runCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    if (line.values.contains(u"--inputs"_s)) {
        return runInputs(line, **session);
    }
    if (const auto misplaced = rejectInputOptions(line); !misplaced) {
        return misplaced.fault();
    }
    const auto loaded = LoadedGraph::loadForRun(line);
    if (!loaded) {
        return loaded.fault();
    }
    auto options = optionsOfRun(line, **loaded);
    if (!options) {
        return options.fault();
    }
    if (const auto created = (*loaded)->createOutDir(); !created) {
        return created.fault();
    }
    return (*session)->run((*loaded)->graph, (*loaded)->registry, *std::move(options));
}

CommandOptions checkOptions()
{
    return {{{"", graphOptions()},
             {"", manyInputsOptions().first(2)},
             {"", Session::logFormatOption()},
             {"", kCheckOptions}},
            1,
            u"one graph file, or one template with --template, is required"_s};
}

CommandResult<void> checkCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    if (line.has(u"--template"_s)) {
        return checkTemplate(line.arguments[0], line.has(u"--json"_s));
    }
    // With --list-outputs the array holds the names of files instead.
    if (!line.has(u"--json"_s) || line.has(u"--list-outputs"_s)) {
        return checkGraph(line);
    }
    ProblemList list(line.arguments[0]);
    const LogScope scope({&list, {}});
    auto checked = checkGraph(line);
    // A usage error is about the command line.
    if (checked || checked.fault().detail.isEmpty()) {
        printJson(QJsonDocument(list.problems()));
    }
    return checked;
}
