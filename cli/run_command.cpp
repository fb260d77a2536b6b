// run and check: load and validate a graph; run also adds the taps and runs it.
#include "base/counted.h"
#include "base/nearest_name.h"
#include "base/system_error.h"
#include "commands.h"
#include "corvanta/action_registry.h"
#include "file_types.h"
#include "problem_list.h"
#include "session.h"
#include "template_list.h"
#include "visible_text.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A graph with the actions, variables and output folder that it was checked with.
struct LoadedGraph
{
    CorvantaGraph graph;
    ActionRegistry registry;
    QMap<QString, QString> variables;
    QString outDir;
    bool isValid = false;

    /// The actions whose files exclude each other. Only for a valid graph.
    CorvantaGraph::Problems conflicts() const
    {
        RunOptions options;
        options.variables = variables;
        options.outDir = outDir;
        return Run(graph, registry, std::move(options)).problems(); // never started
    }
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

/// A variable that the graph does not use is a misspelled one. Returns a usage error then.
CommandResult<void> checkUse(const QMap<QString, QString> &given, const CorvantaGraph &graph)
{
    const QStringList used = graph.usedVariables();
    for (auto it = given.begin(); it != given.end(); ++it) {
        if (!used.contains(it.key())) {
            return badUsage(u"--set %1: the graph does not use the variable '%1'%2"_s.arg(
                it.key(), closeNameHint(it.key(), used)));
        }
    }
    return {};
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

/// Loads and validates the graph file of `line`; logs what makes it invalid.
CommandResult<std::unique_ptr<LoadedGraph>> load(const CommandLine &line)
{
    auto variables = variablesOf(line.values.value(u"--set"_s));
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
    if (const auto used = checkUse(loaded->variables, loaded->graph); !used) {
        return used.fault();
    }
    return loaded;
}

/// The same for a run, which also logs the names and values that it ignores.
CommandResult<std::unique_ptr<LoadedGraph>> loadForRun(const CommandLine &line)
{
    auto loaded = load(line);
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

constexpr QLatin1StringView kTapWriter("writeCSV");

/// A writer of CSV for the file `name`.
std::unique_ptr<ActionItem> makeTapWriter(const QString &name, const ActionRegistry &registry)
{
    // Without GlobalParameters: the name is absolute, and a "${" in it is not a variable.
    return makeWriter(registry, kTapWriter, QDir::current().absoluteFilePath(name));
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
    if (loaded.registry.prototype(kTapWriter) == nullptr) {
        return badUsage(u"--tap needs the action '%1', which no module has"_s.arg(kTapWriter));
    }
    return Listener{"tap "_L1 + tap->name, *pin, makeTapWriter(tap->value, loaded.registry)};
}

/// The options of the run, with its taps. All taps are checked before the run starts.
CommandResult<RunOptions> optionsOfRun(const CommandLine &line, const LoadedGraph &loaded)
{
    RunOptions options;
    options.variables = loaded.variables;
    options.outDir = loaded.outDir;
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

/// Always an array, also for one element or none: scripts need no special case.
void printJson(const QJsonArray &array)
{
    std::fputs(QJsonDocument(array).toJson().constData(), stdout);
}

/// Prints the files that a run would write, for scripts: as they are, one per line.
void printOutputs(const LoadedGraph &loaded, bool isJson)
{
    const QStringList names =
        loaded.graph.outputs(loaded.registry, loaded.variables, loaded.outDir);
    if (isJson) {
        printJson(QJsonArray::fromStringList(names));
        return;
    }
    for (const QString &name : names) {
        std::printf("%s\n", name.toUtf8().constData());
    }
}

/// Logs all problems of the graph file and prints what was asked for, except the problems as JSON.
CommandResult<void> checkGraph(const CommandLine &line)
{
    const auto loaded = load(line);
    if (!loaded) {
        return loaded.fault();
    }
    const LoadedGraph &checked = **loaded;
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
        printOutputs(checked, isJson);
    } else if (!isJson) {
        std::printf("%s: %s, %s: valid\n", qPrintable(visibleText(line.arguments[0])),
                    qPrintable(counted(std::ssize(checked.graph.actions), u"action"_s)),
                    qPrintable(counted(std::ssize(checked.graph.links), u"link"_s)));
    }
    return {};
}

/// Creates the folder of --out-dir, which a user expects after naming it.
CommandResult<void> createOutDir(const QString &name)
{
    if (name.isEmpty() || QDir().mkpath(name)) {
        return {};
    }
    return Fault{kFailed, u"cannot create the folder '%1' of --out-dir: %2"_s.arg(
                              name, SystemError::ofLastCall().text())};
}

/// What determines the files of a graph.
constexpr OptionInfo kGraphOptions[] = {
    {"--set", "NAME=VALUE", "set a graph variable (repeatable); overrides the graph's value"},
    {"--out-dir", "DIR",
     "folder for relative output names (default: the graph's folder); created by a run if it is "
     "missing"},
    {"--name", "FILE", "for -: the name for messages; relative names are relative to its folder"},
};
constexpr OptionInfo kRunOptions[] = {
    {"--tap", "ID:PIN=FILE.csv", "also write the rows of an output pin as CSV (repeatable)"},
    {"--compression", "LEVEL",
     "compression of packages: isal-2 (fast, the default), isal-3, zlib-1 to zlib-9 (smallest)"},
    {"--strict", "", "unknown names and wrong values in GRAPH are errors, not warnings"},
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
    return Session::options(
        {{{"", kGraphOptions}, {"", kRunOptions}}, 1, u"one graph file is required"_s});
}

CommandResult<void> runCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    const auto loaded = loadForRun(line);
    if (!loaded) {
        return loaded.fault();
    }
    auto options = optionsOfRun(line, **loaded);
    if (!options) {
        return options.fault();
    }
    if (const auto created = createOutDir((*loaded)->outDir); !created) {
        return created.fault();
    }
    return (*session)->run((*loaded)->graph, (*loaded)->registry, *std::move(options));
}

CommandOptions checkOptions()
{
    return {{{"", kGraphOptions}, {"", Session::logFormatOption()}, {"", kCheckOptions}},
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
        printJson(list.problems());
    }
    return checked;
}
