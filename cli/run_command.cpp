#include "commands.h"
#include "corvanta/action_registry.h"
#include "session.h"

#include <QDir>

#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// What `run` and `check` have in common: the graph, and what is wrong with it.
struct Loaded
{
    CorvantaGraph graph;
    ActionRegistry registry;
    QMap<QString, QString> variables;
};

bool load(const QString &fileName, const QStringList &assignments, Loaded *loaded, QString *usage)
{
    for (const QString &assignment : assignments) {
        QString name;
        QString value;
        if (!splitAssignment(assignment, &name, &value)) {
            *usage = u"'%1' is not of the form NAME=VALUE"_s.arg(assignment);
            return false;
        }
        loaded->variables.insert(name, value);
    }
    loaded->registry.loadAll();
    auto graph = CorvantaGraph::load(fileName);
    const CorvantaGraph::Problems problems =
        graph ? graph->validate(loaded->registry, loaded->variables) : graph.fault().code;
    for (const CorvantaGraph::Problem &problem : problems) {
        MainUI::addLog(MainUI::Error, u"Error: "_s + problem.text);
    }
    if (problems.isEmpty()) {
        loaded->graph = *std::move(graph);
    }
    return problems.isEmpty();
}

/// A tap is a writeCSV that listens to a pin.
bool addTap(const QString &text, const Loaded &loaded, RunOptions *options, QString *usage)
{
    QString pinText;
    QString fileName;
    const bool isAssignment = splitAssignment(text, &pinText, &fileName);
    const auto pin = CorvantaGraph::parsePin(pinText);
    if (!isAssignment || !pin || fileName.isEmpty()) {
        *usage = u"'%1' is not of the form ID:PIN=FILE.csv"_s.arg(text);
        return false;
    }
    const int index = loaded.graph.indexOf(pin->action);
    const ActionItem *const type =
        index < 0 ? nullptr
                  : loaded.registry.prototype(loaded.graph.actions[index].parameters.getName());
    if (type == nullptr || pin->pin >= type->pinOutCount()) {
        *usage = u"the graph has no output pin '%1' to tap"_s.arg(pinText);
        return false;
    }
    ToXMLStringTool tool;
    const QString element = u"<writeCSV fileName='%1'/>"_s.arg(
        QString::fromWCharArray(tool.toXML(QDir::current().absoluteFilePath(fileName))));
    const auto writer = XMLNode::parse(element.toUtf8());
    if (!writer) {
        *usage = u"the name '%1' has characters that a graph cannot hold"_s.arg(fileName);
        return false;
    }
    options->listeners.push_back(
        {"tap "_L1 + pinText, *pin, loaded.registry.create(*writer, nullptr)});
    return true;
}

} // namespace

int runCommand(const QStringList &words)
{
    CommandLine line;
    QString error;
    const CommandOptions accepted =
        Session::options({{u"--set"_s, u"--out-dir"_s, u"--tap"_s, u"--compression"_s}, {}});
    if (!CommandLine::parse(words, accepted, &line, &error)) {
        return usageError(u"run"_s, error);
    }
    if (line.arguments.size() != 1) {
        return usageError(u"run"_s, u"one graph file is needed"_s);
    }
    const std::unique_ptr<Session> session = Session::open(line, &error);
    if (!session) {
        return usageError(u"run"_s, error);
    }
    Loaded loaded;
    if (!load(line.arguments[0], line.values.value(u"--set"_s), &loaded, &error)) {
        return error.isEmpty() ? kUsage : usageError(u"run"_s, error);
    }
    RunOptions options;
    options.variables = loaded.variables;
    options.outDir = line.value(u"--out-dir"_s, QString());
    options.compression = line.value(u"--compression"_s, QString());
    for (const QString &tap : line.values.value(u"--tap"_s)) {
        if (!addTap(tap, loaded, &options, &error)) {
            return usageError(u"run"_s, error);
        }
    }
    return session->run(loaded.graph, loaded.registry, std::move(options));
}

int checkCommand(const QStringList &words)
{
    CommandLine line;
    QString error;
    if (!CommandLine::parse(words, {{u"--set"_s, u"--log-format"_s}, {}}, &line, &error)) {
        return usageError(u"check"_s, error);
    }
    const std::unique_ptr<Session> session = Session::open(line, &error);
    if (line.arguments.size() != 1 || !session) {
        return usageError(u"check"_s, u"one graph file is needed; --log-format is text or json"_s);
    }
    Loaded loaded;
    const bool valid = load(line.arguments[0], line.values.value(u"--set"_s), &loaded, &error);
    if (!error.isEmpty()) {
        return usageError(u"check"_s, error);
    }
    if (valid) {
        std::printf("%s: %d actions, %d links: valid\n", qPrintable(line.arguments[0]),
                    static_cast<int>(loaded.graph.actions.size()),
                    static_cast<int>(loaded.graph.links.size()));
    }
    return valid ? kDone : kUsage;
}
