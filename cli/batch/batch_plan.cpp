// Makes the plan of a batch from its command line, and writes its folder.
#include "cli/batch/batch_plan.h"

#include "base/mapped.h"
#include "base/system_error.h"
#include "cli/batch/batch_inputs.h"
#include "cli/merge/merge_action.h"
#include "cli/visible_text.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QSaveFile>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

QString absolute(const QString &name)
{
    return QDir::cleanPath(QDir::current().absoluteFilePath(name));
}

/// The value of an option that is a number of at least `low`.
CommandResult<int> numberOf(const CommandLine &line, const QString &option, int defaultValue,
                            int low)
{
    bool isNumber = false;
    const int number = line.value(option, QString::number(defaultValue)).toInt(&isNumber);
    if (!isNumber || number < low) {
        return badUsage(u"%1 needs a number of at least %2"_s.arg(option, QString::number(low)));
    }
    return number;
}

/// Inputs per task. Local tasks are small enough to keep all workers busy until the end. A piece is
/// as large as its user wants a task to be.
int defaultPerTask(const QString &backend, const QVector<InputFile> &inputs, int workers)
{
    const int perTask = inputs.first().piece ? 1 : 50;
    constexpr qsizetype kTasksPerWorker = 8;
    const int count = workers > 0 ? workers : QThread::idealThreadCount();
    return backend == "local"_L1 ? static_cast<int>(std::clamp<qsizetype>(
                                       inputs.size() / (count * kTasksPerWorker), 1, perTask))
                                 : perTask;
}

/// These options with their values.
QStringList wordsOf(const CommandLine &line, const QStringList &options)
{
    QStringList words;
    for (const QString &option : options) {
        for (const QString &value : line.values.value(option)) {
            words << option << value;
        }
    }
    return words;
}

/// The options that the runs of the tasks and the merge get, with names that hold in every folder.
QStringList commonOptionsOf(const CommandLine &line)
{
    QStringList words = wordsOf(line, {u"--system-encoding"_s});
    for (const QString &paths : line.values.value(u"--plugin-path"_s)) {
        for (const QString &path : paths.split(QDir::listSeparator(), Qt::SkipEmptyParts)) {
            words << u"--plugin-path"_s << absolute(path);
        }
    }
    return words;
}

/// Tasks run in other folders, or on other machines: nothing may be relative to this one.
QStringList runOptionsOf(const CommandLine &line)
{
    QStringList words = commonOptionsOf(line);
    words += wordsOf(line, {u"--set"_s, u"--compression"_s});
    if (const QString outDir = line.value(u"--out-dir"_s, {}); !outDir.isEmpty()) {
        words << u"--out-dir"_s << absolute(outDir);
    }
    return line.has(u"--strict"_s) ? words << u"--strict"_s : words;
}

QStringList mergeOptionsOf(const CommandLine &line)
{
    QStringList words = commonOptionsOf(line);
    return line.has(u"--union"_s) ? words << u"--union"_s : words;
}

/// The words of one shell command.
QString shellCommand(const QStringList &words)
{
    return mapped<QStringList>(words, shellWord).join(u' ');
}

/// The same command in one line of visible characters, for tables and terminals.
QString visibleCommand(const QString &command)
{
    if (visibleText(command) == command) {
        return command;
    }
    QString octal; // the form of printf %b
    for (const char c : command.toUtf8()) {
        const bool isPlain = c >= ' ' && c <= '~' && c != '\\';
        octal += isPlain ? QString(QLatin1Char(c))
                         : u"\\0%1"_s.arg(uint(uchar(c)), 3, 8, QLatin1Char('0'));
    }
    return u"eval \"$(printf %b %1)\""_s.arg(shellWord(octal));
}

/// Replaced in one step, because tasks of an earlier attempt may still read the file.
CommandResult<void> writeFile(const QString &name, const QByteArray &content)
{
    QSaveFile file(name);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() ||
        !file.commit()) {
        return Fault{kFailed, u"cannot write '%1': %2"_s.arg(name, file.errorString())};
    }
    return {};
}

/// Part of each script: waits for the program that was started last. "wait" returns when a signal
/// arrives, and is repeated until the program has ended. A shell ignores Ctrl-C in what it starts
/// in the background, so that a signal is passed on as one for termination. It leaves no status:
/// Slurm may run the script again, on another node.
constexpr auto kFinish = R"(stopped=
trap 'stopped=1; kill -TERM "$child" 2>/dev/null' HUP INT QUIT TERM
finish() {
    child=$!
    wait "$child"
    status=$?
    while kill -0 "$child" 2>/dev/null; do
        wait "$child"
        status=$?
    done
    case $status in
    129 | 130 | 131 | 143) exit "$status" ;;
    esac
}
)"_L1;

/// Runs one task, again if it fails.
QByteArray jobScript(const BatchPlan &plan)
{
    QStringList words{QCoreApplication::applicationFilePath(),
                      u"run"_s,
                      u"-"_s,
                      u"--name"_s,
                      plan.graphFile,
                      u"--inputs"_s,
                      plan.folder,
                      u"--journal"_s,
                      plan.journal,
                      u"--balance"_s,
                      plan.balancesSize ? u"size"_s : u"count"_s,
                      u"--log-format"_s,
                      u"json"_s,
                      u"--progress"_s,
                      u"never"_s};
    words += plan.runOptions;
    // Success and usage errors end the loop: another attempt would end in the same way.
    const QString text = uR"(#!/bin/sh
# Runs one task of a batch: job.sh TASK. A task that runs again does only what is missing.
task=${1:-$SLURM_ARRAY_TASK_ID}
folder=%1
%5attempt=0
while :; do
    %2 \
        --shard "$task/%3" <"$folder/graph" 2>>"$folder/logs/task-$task.log" &
    finish
    case $status in
    0 | 2) break ;;
    esac
    [ -z "$stopped" ] && [ "$attempt" -lt %4 ] || break
    attempt=$((attempt + 1))
done
echo "$status" >"$folder/status/$task"
exit "$status"
)"_s;
    return text
        .arg(shellWord(plan.folder), shellCommand(words), QString::number(plan.tasks),
             QString::number(plan.retries), kFinish)
        .toUtf8();
}

/// Merges the outputs of all inputs.
QByteArray mergeScript(const BatchPlan &plan)
{
    const QStringList words = QStringList{QCoreApplication::applicationFilePath(), u"merge"_s,
                                          plan.merged, u"--parts-from"_s, plan.folder} +
                              plan.mergeOptions;
    return uR"(#!/bin/sh
# Merges the outputs of a batch.
folder=%1
%3%2 >"$folder/logs/merge.log" 2>&1 &
finish
echo "$status" >"$folder/status/merge"
exit "$status"
)"_s.arg(shellWord(plan.folder), shellCommand(words), kFinish)
        .toUtf8();
}

/// A merge needs one file per input, whose name is known before the run, and a file of its own.
CommandResult<void> checkMerge(const CommandLine &line, const BatchGraph &graph,
                               const QString &merged)
{
    const QStringList ofFirst = graph.outputsOf(graph.inputs.first());
    if (ofFirst.size() != 1 || ofFirst[0].contains(u'*')) {
        return badUsage(
            u"--merge needs a graph that writes one file per input; this one writes %1"_s.arg(
                ofFirst.isEmpty() ? u"none"_s : ofFirst.join(u", "_s)));
    }
    const QStringList outputs = graph.outputs();
    const auto isMerged = [&](const InputFile &input) { return input.file.name == merged; };
    if (std::ranges::any_of(graph.inputs, isMerged) || outputs.contains(merged)) {
        return badUsage(
            u"--merge: the file '%1' is an input of the batch, or the output of a run"_s.arg(
                merged));
    }
    const QString folder = QFileInfo(merged).path();
    if (!QFileInfo(folder).isDir() && folder != graph.loaded->absoluteOutDir()) {
        return badUsage(u"--merge: there is no folder '%1'"_s.arg(folder));
    }
    // Their names become the lines of a parameter.
    const auto broken = std::ranges::find_if(
        outputs, [](const QString &name) { return name.contains(u'\n') || name.endsWith(u'\r'); });
    if (broken != outputs.end()) {
        return badUsage(u"--merge: the name '%1' has a line break"_s.arg(*broken));
    }
    CommandLine merge = line;
    merge.arguments = {merged};
    const auto action = makeMerge(merge, outputs, graph.loaded->registry);
    return action ? CommandResult<void>() : action.fault();
}

} // namespace

QString shellWord(const QString &word)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_./:=+-]+$"_s);
    return plain.match(word).hasMatch() ? word
                                        : u'\'' + QString(word).replace(u'\'', "'\\''"_L1) + u'\'';
}

/// Nothing is written here, so that a mistake leaves no folder.
CommandResult<BatchPlan> BatchPlan::of(const CommandLine &line, const BatchGraph &graph)
{
    BatchPlan plan;
    plan.graphFile = graph.graphFile();
    plan.identity = graph.identity();
    plan.backend = line.value(u"--backend"_s, u"local"_s);
    const QStringList backends{u"slurm"_s, u"parallel"_s, u"local"_s};
    if (!backends.contains(plan.backend)) {
        return badUsage(u"--backend must be slurm, parallel or local"_s);
    }
    const auto maxRunning =
        numberOf(line, u"--max-running"_s, 0, line.values.contains(u"--max-running"_s) ? 1 : 0);
    const auto retries = numberOf(line, u"--retries"_s, 1, 0);
    for (const auto *number : {&maxRunning, &retries}) {
        if (!*number) {
            return number->fault();
        }
    }
    const auto perTask =
        numberOf(line, u"--per-task"_s, defaultPerTask(plan.backend, graph.inputs, *maxRunning), 1);
    if (!perTask) {
        return perTask.fault();
    }
    plan.maxRunning = *maxRunning;
    plan.retries = *retries;
    plan.inputs = graph.inputs.size();
    plan.tasks = (plan.inputs + *perTask - 1) / *perTask;
    plan.folder = absolute(line.value(
        u"--folder"_s, QDir(graph.loaded->absoluteOutDir())
                           .filePath(QFileInfo(plan.graphFile).completeBaseName() + ".batch"_L1)));
    plan.journal = absolute(line.value(u"--journal"_s, plan.file(u"journal"_s)));
    plan.runOptions = runOptionsOf(line);
    plan.backendOptions = line.values.value(u"--backend-option"_s);
    plan.balancesSize = line.value(u"--balance"_s, {}) == "size"_L1;
    if (line.values.contains(u"--merge"_s)) {
        plan.merged = absolute(line.value(u"--merge"_s, {}));
        plan.mergeOptions = mergeOptionsOf(line);
        if (const auto merge = checkMerge(line, graph, plan.merged); !merge) {
            return merge.fault();
        }
    }
    return plan;
}

/// Members that are missing, as in a damaged file, are 0 or empty; a batch has at least one task.
CommandResult<BatchPlan> BatchPlan::read(const QString &folder)
{
    BatchPlan plan;
    plan.folder = absolute(folder);
    QFile file(plan.file(u"batch.json"_s));
    if (!file.open(QIODevice::ReadOnly)) {
        return badUsage(u"'%1' is not the folder of a batch: %2"_s.arg(folder, file.errorString()));
    }
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    plan.graphFile = object[u"graph"].toString();
    plan.backend = object[u"backend"].toString();
    plan.journal = object[u"journal"].toString();
    plan.merged = object[u"merge"].toString();
    plan.inputs = object[u"inputs"].toInteger();
    plan.tasks = object[u"tasks"].toInteger();
    plan.job = object[u"job"].toString();
    plan.mergeJob = object[u"mergeJob"].toString();
    plan.identity = {object[u"run"].toObject(), object[u"usesIndex"].toBool()};
    plan.runOptions = object[u"runOptions"].toVariant().toStringList();
    if (plan.tasks < 1) {
        return badUsage(
            u"'%1' cannot be read: it is not the plan of a batch"_s.arg(file.fileName()));
    }
    return plan;
}

QString BatchPlan::logOf(qsizetype task) const
{
    return file(u"logs/task-%1.log"_s.arg(task));
}

/// A script that was killed while it wrote may leave an empty file, which is not a status.
std::optional<int> BatchPlan::statusOf(const QString &task) const
{
    QFile status(file(u"status/"_s + task));
    bool isNumber = false;
    const int number =
        status.open(QIODevice::ReadOnly) ? status.readAll().trimmed().toInt(&isNumber) : 0;
    return isNumber ? std::optional(number) : std::nullopt;
}

/// With as many shards as inputs, each shard is one input.
QString BatchPlan::commandFor(qsizetype input) const
{
    QStringList words{u"corvanta"_s,
                      u"run"_s,
                      graphFile,
                      u"--inputs"_s,
                      folder,
                      u"--shard"_s,
                      u"%1/%2"_s.arg(QString::number(input), QString::number(inputs)),
                      u"--journal"_s,
                      journal};
    return visibleCommand(shellCommand(words + runOptions));
}

/// Statuses of an earlier run are removed: they would count as those of the new tasks.
CommandResult<void> BatchPlan::writeFiles(const BatchGraph &graph) const
{
    QDir(file(u"status"_s)).removeRecursively();
    for (const QString &name : {file(u"status"_s), file(u"logs"_s), journal}) {
        if (!QDir().mkpath(name)) {
            return Fault{kFailed, u"cannot create the folder '%1': %2"_s.arg(
                                      name, SystemError::ofLastCall().text())};
        }
        if (!QFileInfo(name).isWritable()) {
            return Fault{kFailed, u"cannot write to the folder '%1'"_s.arg(name)};
        }
    }
    QFile original(graphFile);
    if (!original.open(QIODevice::ReadOnly)) {
        return Fault{kFailed, u"cannot read '%1': %2"_s.arg(graphFile, original.errorString())};
    }
    std::vector<std::pair<QString, QByteArray>> files{
        {file(u"graph"_s), original.readAll()},
        {inputsFileOf(folder), batchLines(graph.inputs)},
        {file(u"job.sh"_s), jobScript(*this)}};
    if (!merged.isEmpty()) {
        files.emplace_back(file(u"merge.sh"_s), mergeScript(*this));
    }
    for (const auto &[name, content] : files) {
        if (const auto written = writeFile(name, content); !written) {
            return written.fault();
        }
    }
    return save();
}

/// What --status and the next run of the same command need; job.sh has what the tasks need.
CommandResult<void> BatchPlan::save() const
{
    const QJsonObject object{{u"graph"_s, graphFile},
                             {u"backend"_s, backend},
                             {u"journal"_s, journal},
                             {u"merge"_s, merged},
                             {u"inputs"_s, inputs},
                             {u"tasks"_s, tasks},
                             {u"job"_s, job},
                             {u"mergeJob"_s, mergeJob},
                             {u"run"_s, identity.common},
                             {u"usesIndex"_s, identity.usesIndex},
                             {u"runOptions"_s, QJsonArray::fromStringList(runOptions)}};
    return writeFile(file(u"batch.json"_s), QJsonDocument(object).toJson());
}
