#include "commands.h"

#include "command_line.h"
#include "log_sinks.h"

#include "base/platform/terminal.h"
#include "corvanta/action_registry.h"
#include "corvanta/files.h"
#include "corvanta/run.h"

#include <QDir>
#include <QElapsedTimer>

#include <atomic>
#include <csignal>
#include <cstdio>
#include <sstream>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

std::atomic<int> g_interrupts = 0;

/// The second Ctrl-C ends the program at once.
void onInterrupt(int)
{
    if (g_interrupts.fetch_add(1) > 0) {
        std::_Exit(kInterrupted);
    }
}

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
    QVector<CorvantaGraph::Problem> problems;
    loaded->graph = CorvantaGraph::load(fileName, &problems);
    if (problems.isEmpty()) {
        problems = loaded->graph.validate(loaded->registry, loaded->variables);
    }
    for (const CorvantaGraph::Problem &problem : problems) {
        MainUI::addLog(MainUI::Error, u"Error: "_s + problem.text);
    }
    return problems.isEmpty();
}

/// A tap is a writeCSV that listens to a pin.
bool addTap(const QString &text, const Loaded &loaded, RunOptions *options, QString *usage)
{
    QString pinText;
    QString fileName;
    Listener tap;
    if (!splitAssignment(text, &pinText, &fileName) || !CorvantaGraph::parsePin(pinText, &tap.from) || fileName.isEmpty()) {
        *usage = u"'%1' is not of the form ID:PIN=FILE.csv"_s.arg(text);
        return false;
    }
    const int index = loaded.graph.indexOf(tap.from.action);
    const ActionItem *const type
        = index < 0 ? nullptr : loaded.registry.prototype(loaded.graph.actions[index].parameters.getName());
    if (type == nullptr || tap.from.pin >= type->pinOutCount()) {
        *usage = u"the graph has no output pin '%1' to tap"_s.arg(pinText);
        return false;
    }
    ToXMLStringTool tool;
    const QString element = u"<writeCSV fileName='%1'/>"_s.arg(
        QString::fromWCharArray(tool.toXML(QDir::current().absoluteFilePath(fileName))));
    XMLNode::Error error;
    tap.id = "tap "_L1 + pinText;
    tap.action = loaded.registry.create(XMLNode::parse(element.toUtf8(), &error), nullptr);
    options->listeners.push_back(std::move(tap));
    return true;
}

/// 1234567 as 1.2M: at most four characters and a unit.
QByteArray shortCount(double count)
{
    constexpr std::pair<double, char> units[] = {{1e9, 'G'}, {1e6, 'M'}, {1e3, 'k'}};
    for (const auto &[size, letter] : units) {
        if (count >= size) {
            return QByteArray::number(count / size, 'f', count < 100 * size ? 1 : 0) + letter;
        }
    }
    return QByteArray::number(static_cast<qint64>(count));
}

/// A fraction from 0 to 1 as "[####------] 42%".
QByteArray fractionBar(float fraction)
{
    constexpr int kWidth = 10;
    const float inside = qBound(0.0F, fraction, 1.0F);
    const int filled = static_cast<int>(inside * kWidth);
    return '[' + QByteArray(filled, '#') + QByteArray(kWidth - filled, '-') + "] "
        + QByteArray::number(static_cast<int>(inside * 100)) + '%';
}

/// One line: per action its rows, rows per second and fraction done.
QByteArray progressLine(const QVector<ActionProgress> &all, double seconds)
{
    QByteArray line;
    for (const ActionProgress &action : all) {
        const double rows = static_cast<double>(qMax(action.rowsIn, action.rowsOut));
        line += line.isEmpty() ? "" : "  ";
        line += action.id.toUtf8() + ' ' + shortCount(rows);
        line += seconds > 0 ? " (" + shortCount(rows / seconds) + "/s)" : "";
        if (action.finished) {
            line += " done";
        } else if (action.fraction >= 0) {
            line += ' ' + fractionBar(action.fraction);
        }
    }
    return line.left(platform::errorTerminalWidth() - 1);
}

void waitForEnd(Run *run, CommandLog *log, bool showProgress)
{
    constexpr auto kTick = std::chrono::milliseconds(50);
    constexpr int kTicksPerLine = 4;
    QElapsedTimer timer;
    timer.start();
    for (int tick = 1; !run->waitFor(kTick); ++tick) {
        if (g_interrupts > 0) {
            run->stop();
        }
        if (showProgress && tick % kTicksPerLine == 0) {
            log->setProgressLine(progressLine(run->progress(), static_cast<double>(timer.elapsed()) / 1000));
        }
    }
    log->setProgressLine({});
    run->wait();
}

int exitStatusOf(const Run &run)
{
    if (run.failed()) {
        return kFailed;
    }
    return run.succeeded() ? kDone : kInterrupted;
}

} // namespace

int runCommand(const QStringList &words)
{
    CommandLine line;
    QString error;
    const CommandOptions accepted{{u"--set"_s, u"--out-dir"_s, u"--tap"_s, u"--log-format"_s, u"--progress"_s,
                                   u"--system-encoding"_s, u"--compression"_s},
                                  {u"--quiet"_s}};
    if (!CommandLine::parse(words, accepted, &line, &error)) {
        return usageError(u"run"_s, error);
    }
    const QString logFormat = line.value(u"--log-format"_s, u"text"_s);
    const std::unique_ptr<CommandLog> log = CommandLog::create(logFormat, line.has(u"--quiet"_s));
    const QString progress = line.value(u"--progress"_s, u"auto"_s);
    if (line.arguments.size() != 1) {
        return usageError(u"run"_s, u"one graph file is needed"_s);
    }
    if (!log || !QStringList{u"auto"_s, u"always"_s, u"never"_s}.contains(progress)) {
        return usageError(u"run"_s, u"--log-format is text or json; --progress is auto, always or never"_s);
    }
    MainUI::setLogSink(log.get());
    setSystemEncoding(line.value(u"--system-encoding"_s, QString()));

    Loaded loaded;
    if (!load(line.arguments[0], line.values.value(u"--set"_s), &loaded, &error)) {
        MainUI::setLogSink(nullptr);
        return error.isEmpty() ? kUsage : usageError(u"run"_s, error);
    }
    RunOptions options;
    options.variables = loaded.variables;
    options.outDir = line.value(u"--out-dir"_s, QString());
    options.compression = line.value(u"--compression"_s, QString());
    options.log = log.get();
    for (const QString &tap : line.values.value(u"--tap"_s)) {
        if (!addTap(tap, loaded, &options, &error)) {
            MainUI::setLogSink(nullptr);
            return usageError(u"run"_s, error);
        }
    }

    std::signal(SIGINT, onInterrupt);
    std::signal(SIGTERM, onInterrupt);
    Run run(loaded.graph, loaded.registry, std::move(options));
    run.start();
    const bool wantsProgress = progress == "always"_L1 || (progress == "auto"_L1 && platform::errorsGoToTerminal());
    // Programs that read the messages get nothing but messages.
    waitForEnd(&run, log.get(), wantsProgress && logFormat == "text"_L1);
    MainUI::setLogSink(nullptr);
    return exitStatusOf(run);
}

int checkCommand(const QStringList &words)
{
    CommandLine line;
    QString error;
    if (!CommandLine::parse(words, {{u"--set"_s, u"--log-format"_s}, {}}, &line, &error)) {
        return usageError(u"check"_s, error);
    }
    const std::unique_ptr<CommandLog> log = CommandLog::create(line.value(u"--log-format"_s, u"text"_s), false);
    if (line.arguments.size() != 1 || !log) {
        return usageError(u"check"_s, u"one graph file is needed; --log-format is text or json"_s);
    }
    MainUI::setLogSink(log.get());
    Loaded loaded;
    const bool valid = load(line.arguments[0], line.values.value(u"--set"_s), &loaded, &error);
    MainUI::setLogSink(nullptr);
    if (!error.isEmpty()) {
        return usageError(u"check"_s, error);
    }
    if (valid) {
        std::printf("%s: %d actions, %d links: valid\n", qPrintable(line.arguments[0]),
                    static_cast<int>(loaded.graph.actions.size()), static_cast<int>(loaded.graph.links.size()));
    }
    return valid ? kDone : kUsage;
}
