// "batch": runs a graph for many inputs in tasks, on a scheduler or in local processes, and waits.
//
// A task is "run --inputs LIST --shard I/N"; its journal makes a second run of anything cheap and
// safe. All that is known of a batch is in its folder, so the same command resumes it, and --status
// needs nothing else.
#include "base/counted.h"
#include "base/mapped.h"
#include "cli/batch/backend.h"
#include "cli/batch/batch_inputs.h"
#include "cli/batch/batch_state.h"
#include "cli/commands.h"
#include "cli/session.h"
#include "cli/stop_signals.h"
#include "corvanta/main_ui.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QThread>

#include <algorithm>
#include <cstdio>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

constexpr OptionInfo kBatchOptions[] = {
    {"--inputs", "LIST", "the inputs: a list file, a quoted pattern, or -, as in run"},
    {"--split-rows", "N", "divide each input into pieces of about N rows, as in run"},
    {"--backend", "local|parallel|slurm",
     "what runs the tasks: processes of this machine (local, the default), GNU parallel, or a "
     "Slurm job array"},
    {"--per-task", "N",
     "inputs per task (default: 50, of pieces 1; with local fewer, so that all processes have "
     "work)"},
    {"--retries", "N", "how often a task that fails or crashes runs again (default: 1)"},
    {"--max-running", "N",
     "tasks that run at the same time (default: the number of cores; Slurm decides itself)"},
    {"--balance", "count|size",
     "tasks of as many inputs (count, the default), or of as many bytes (size)"},
    {"--folder", "DIR",
     "folder of the batch: list, script, logs, journal (default: NAME.batch in the folder of the "
     "outputs)"},
    {"--journal", "DIR", "folder of the journal (default: journal in the folder of the batch)"},
    {"--no-resume", "", "run inputs again that the journal says are done"},
    {"--backend-option", "OPTION",
     "an option for sbatch or parallel, for example --backend-option=--time=60 (repeatable)"},
    {"--detach", "", "return when the tasks are submitted, and print the folder of the batch"},
    {"--status", "", "print how far the batch in FOLDER is, and its failures"},
    {"--json", "", "with --status: print one JSON object"},
};
constexpr OptionInfo kMergeOptions[] = {
    {"--merge", "OUT", "merge the outputs of all inputs into OUT when all are done"},
    {"--union", "", "merge files whose columns differ"},
};

/// Seconds as "1:02:03" or "2:03".
QString durationText(qint64 seconds)
{
    const auto digits = [](qint64 number, qsizetype least) {
        return QString::number(number).rightJustified(least, u'0');
    };
    const bool hasHours = seconds >= 3600;
    const QString rest =
        digits(seconds / 60 % 60, hasHours ? 2 : 1) + u':' + digits(seconds % 60, 2);
    return hasHours ? QString::number(seconds / 3600) + u':' + rest : rest;
}

/// "512 of 1000 inputs done, 3 failed, 10240000 rows"
QString countsText(const BatchCounts &counts)
{
    const QString failed = counts.failed > 0 ? u", %1 failed"_s.arg(counts.failed) : QString();
    return u"%1 of %2 done%3, %4"_s.arg(QString::number(counts.done),
                                        counted(counts.inputs, u"input"_s), failed,
                                        counted(counts.rows, u"row"_s));
}

/// The lock of a batch that runs; its owner waits for the tasks.
QString lockOf(const BatchPlan &plan)
{
    return plan.file(u"lock"_s);
}

/// Whether a program waits for the tasks, or the scheduler has some. It lists tasks for a while
/// after they have left their status; the merge does not belong to an array (N/A). A job that it
/// does not know has ended.
bool isRunning(const BatchPlan &plan)
{
    platform::FileLock lock;
    if (lock.tryFile(lockOf(plan)) == platform::FileLock::Outcome::Held) {
        return true;
    }
    if (plan.job.isEmpty()) {
        return false;
    }
    const QString jobs = plan.mergeJob.isEmpty() ? plan.job : plan.job + u',' + plan.mergeJob;
    const ProgramOutput queue = runProgram(
        u"squeue"_s, {u"--noheader"_s, u"--array"_s, u"--format=%K"_s, u"--jobs="_s + jobs});
    if (!queue.isDone && !queue.errors.contains("Invalid job"_L1)) {
        MainUI::addLog(MainUI::Warning,
                       u"Warning: Slurm does not say whether the job %1 runs: %2"_s.arg(
                           plan.job, queue.errors));
    }
    const auto tasks = queue.output.split(u'\n', Qt::SkipEmptyParts);
    return queue.isDone && std::ranges::any_of(tasks, [&](const QString &task) {
               return !plan.statusOf(task.trimmed() == "N/A"_L1 ? u"merge"_s : task.trimmed());
           });
}

/// One run of "batch", from the first check to the table of failures.
class Batch
{
public:
    Batch(const CommandLine &line, const BatchGraph &graph, BatchPlan plan,
          std::unique_ptr<Backend> backend, Session &session)
        : m_line(line)
        , m_graph(graph)
        , m_plan(std::move(plan))
        , m_backend(std::move(backend))
        , m_session(session)
        , m_state(m_plan, graph.inputs)
    {
    }

    /// Check whether the batch can run. Writes nothing.
    CommandResult<void> check() const;
    CommandResult<void> run();

private:
    Fault<ExitStatus> busyFault() const;
    CommandResult<void> detach() const;
    void printFolder() const;
    CommandResult<void> prepare();
    CommandResult<void> runTasks(QVector<qsizetype> tasks);
    CommandResult<void> startTasks(const QVector<qsizetype> &tasks);
    QVector<qsizetype> lostTasks(const QVector<qsizetype> &tasks) const;
    void wait();
    void showProgress(const QElapsedTimer &timer);
    ExitStatus merge() const;
    ExitStatus worstStatus(const QVector<qsizetype> &tasks) const;
    CommandResult<void> report(ExitStatus status);

    const CommandLine &m_line;
    const BatchGraph &m_graph;
    BatchPlan m_plan;
    std::unique_ptr<Backend> m_backend;
    Session &m_session;
    BatchState m_state;
    platform::FileLock m_lock;
    bool m_isNewFolder = false;
    bool m_isNewOutDir = false;
    qsizetype m_doneBefore = 0;
};

Fault<ExitStatus> Batch::busyFault() const
{
    return badUsage(
        u"the batch is running already; \"corvanta batch --status %1\" shows how far it "
        "is"_s.arg(shellWord(m_plan.folder)));
}

CommandResult<void> Batch::check() const
{
    const QDir folder(m_plan.folder);
    if (QFileInfo::exists(m_plan.file(u"batch.json"_s))) {
        const auto earlier = BatchPlan::read(m_plan.folder);
        if (!earlier) {
            return earlier.fault();
        }
        if (earlier->graphFile != m_plan.graphFile) {
            return badUsage(u"the folder '%1' is of a batch of another graph, '%2'; name another "
                            "one with --folder"_s.arg(m_plan.folder, earlier->graphFile));
        }
        if (isRunning(*earlier)) {
            return busyFault();
        }
    } else if (folder.exists() && !folder.isEmpty() && !QFileInfo::exists(lockOf(m_plan))) {
        // The lock is the first file of a batch, also of one that could not begin.
        return badUsage(u"the folder '%1' has other files; name another one with --folder"_s.arg(
            m_plan.folder));
    }
    const auto journal = Journal::read(m_plan.journal, m_graph.identity(), m_plan.graphFile);
    return journal ? CommandResult<void>() : journal.fault();
}

/// For scripts, which ask for the state later.
void Batch::printFolder() const
{
    std::printf("%s\n", m_plan.folder.toUtf8().constData());
}

/// Starts this program again, without a terminal: it waits for the tasks.
CommandResult<void> Batch::detach() const
{
    const QString log = m_plan.file(u"logs/batch.log"_s);
    QStringList words = QCoreApplication::arguments().mid(1);
    words.removeAll(u"--detach"_s);
    QProcess process;
    process.setProgram(QCoreApplication::applicationFilePath());
    process.setArguments(words);
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(log);
    process.setStandardErrorFile(log);
    const bool isSaved = QDir().mkpath(QFileInfo(log).path()) && m_plan.save();
    const FileState before = FileState{m_plan.file(u"batch.json"_s)}.now();
    if (!isSaved || !process.startDetached()) {
        return Fault{kFailed, u"cannot start the batch: %1"_s.arg(process.errorString())};
    }
    // Until the other program has the lock, --status would say that nothing runs.
    constexpr int kTick = 10;
    constexpr int kPatience = 60000; // milliseconds, for a long list
    for (int i = 0; before.now() == before; i += kTick) {
        if (i >= kPatience) {
            return Fault{kFailed, u"the batch has not begun; its log is '%1'"_s.arg(log)};
        }
        QThread::msleep(kTick);
    }
    printFolder();
    return {};
}

/// The lock is held until this program ends, whatever ends it.
CommandResult<void> Batch::prepare()
{
    m_isNewFolder = !QFileInfo::exists(m_plan.folder);
    m_isNewOutDir = !QFileInfo::exists(m_graph.loaded->absoluteOutDir());
    if (const auto created = m_graph.loaded->createOutDir(); !created) {
        return created.fault();
    }
    // Another program may have begun since check().
    if (QDir().mkpath(m_plan.folder) &&
        m_lock.tryFile(lockOf(m_plan), platform::FileLock::IfMissing::Create) ==
            platform::FileLock::Outcome::Held) {
        return busyFault();
    }
    if (m_line.has(u"--no-resume"_s)) {
        clearJournal(m_plan.journal);
    }
    if (const auto written = m_plan.writeFiles(m_graph); !written) {
        return written.fault();
    }
    m_state.update();
    m_doneBefore = m_state.counts().done;
    return {};
}

/// A batch that the scheduler rejects leaves nothing.
CommandResult<void> Batch::startTasks(const QVector<qsizetype> &tasks)
{
    if (const auto started = m_backend->start(tasks, &m_plan); !started) {
        if (m_isNewFolder && m_plan.job.isEmpty()) {
            QDir(m_plan.folder).removeRecursively();
            if (m_isNewOutDir) {
                QDir().rmdir(m_graph.loaded->absoluteOutDir()); // fails if it has other files
            }
        }
        return started.fault();
    }
    return m_plan.save();
}

/// The tasks that ended before their script could say how: killed by the system, or at the end of
/// their time.
QVector<qsizetype> Batch::lostTasks(const QVector<qsizetype> &tasks) const
{
    QVector<qsizetype> lost;
    std::ranges::copy_if(tasks, std::back_inserter(lost),
                         [&](qsizetype task) { return !m_plan.statusOf(QString::number(task)); });
    return lost;
}

/// The script of a task repeats what fails. What has ended with its script is repeated here.
CommandResult<void> Batch::runTasks(QVector<qsizetype> tasks)
{
    for (int attempt = 0; !tasks.isEmpty(); ++attempt) {
        if (const auto started = startTasks(tasks); !started) {
            return started.fault();
        }
        if (m_line.has(u"--detach"_s)) {
            return {};
        }
        wait();
        tasks = lostTasks(tasks);
        if (tasks.isEmpty() || attempt == m_plan.retries || interruption() ||
            m_backend->isCancelled()) {
            return {};
        }
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: %1 ended without a status (the first is %2) and %3 started again"_s.arg(
                counted(tasks.size(), u"task"_s), QString::number(tasks.first()),
                isOrAre(tasks.size())));
    }
    return {};
}

/// Inputs that were done before this run have cost it no time, and do not count for its speed.
void Batch::showProgress(const QElapsedTimer &timer)
{
    m_state.update();
    const BatchCounts counts = m_state.counts();
    const qint64 seconds = timer.elapsed() / 1000;
    const qsizetype done = counts.done - m_doneBefore;
    QString text = countsText(counts);
    if (seconds > 0 && done > 0) {
        const qsizetype left = counts.inputs - counts.done - counts.failed;
        text += u", %1 inputs/s, %2 left"_s.arg(
            QString::number(static_cast<double>(done) / static_cast<double>(seconds), 'f', 1),
            durationText(left * seconds / done));
    }
    m_session.showLine(text.toUtf8());
}

/// The first signal ends the tasks; a second Ctrl-C ends this program, and with it local tasks.
void Batch::wait()
{
    constexpr qint64 kBetweenLines = 1000; // milliseconds
    constexpr int kTick = 10;              // so that no core waits for its next task
    QElapsedTimer timer;
    timer.start();
    qint64 nextLine = kBetweenLines;
    while (m_backend->isRunning()) {
        if (interruption()) {
            m_backend->cancel();
            break;
        }
        if (timer.elapsed() >= nextLine) {
            const qint64 begin = timer.elapsed();
            showProgress(timer);
            // To count a hundred thousand inputs must not take a core from the tasks.
            nextLine = timer.elapsed() + std::max(kBetweenLines, 10 * (timer.elapsed() - begin));
        }
        QThread::msleep(kTick);
    }
    m_session.showLine({});
    m_state.update();
}

/// A merge that the scheduler has not run, or that ended without a status, runs here.
ExitStatus Batch::merge() const
{
    if (!m_backend->mergesItself() || !m_plan.statusOf(u"merge"_s)) {
        runScript(m_plan.file(u"merge.sh"_s));
    }
    const int status = m_plan.statusOf(u"merge"_s).value_or(kFailed);
    if (status != kDone && !interruption()) {
        QFile log(m_plan.file(u"logs/merge.log"_s));
        static_cast<void>(log.open(QIODevice::ReadOnly)); // empty if there is none
        const QString said = QString::fromUtf8(log.read(4096)).trimmed();
        MainUI::addLog(MainUI::Error,
                       u"Error: the merge has failed: %1"_s.arg(
                           said.isEmpty() ? u"its program has ended without a message"_s : said));
    }
    return status == kDone ? kDone : kFailed;
}

/// A task without a status was ended from outside.
ExitStatus Batch::worstStatus(const QVector<qsizetype> &tasks) const
{
    int worst = kDone;
    for (const qsizetype task : tasks) {
        worst = std::max(worst, m_plan.statusOf(QString::number(task)).value_or(kFailed));
    }
    return static_cast<ExitStatus>(worst);
}

/// The table of an earlier run would be wrong now, so it is removed in any case.
CommandResult<void> Batch::report(ExitStatus status)
{
    const BatchCounts counts = m_state.counts();
    const QVector<BatchFailure> failures = m_state.failures();
    const QString table = m_plan.file(u"failures.tsv"_s);
    QFile::remove(table);
    MainUI::addLog(MainUI::Info, countsText(counts));
    if (!failures.isEmpty() && !interruption()) {
        const QByteArray text = failureTable(failures);
        std::fputs(text.constData(), stdout);
        QFile file(table);
        if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size()) {
            MainUI::addLog(MainUI::Warning,
                           u"Warning: cannot write '%1': %2"_s.arg(table, file.errorString()));
        }
        MainUI::addLog(
            MainUI::Error,
            u"Error: %1 %2 not done; '%3' has the causes and the commands that repeat "
            "them"_s.arg(counted(failures.size(), u"input"_s), isOrAre(failures.size()), table));
    }
    const auto interrupted = interruption();
    const int worst = std::max<int>(status, failures.isEmpty() ? kDone : kFailed);
    if (interrupted) {
        return Fault{*interrupted};
    }
    return worst == kDone ? CommandResult<void>() : Fault{static_cast<ExitStatus>(worst)};
}

/// Slurm runs a detached batch itself; the other backends need a process that waits for the tasks.
CommandResult<void> Batch::run()
{
    const bool isSlurm = m_plan.backend == "slurm"_L1;
    if (m_line.has(u"--detach"_s) && !isSlurm) {
        return detach();
    }
    const CleanEnd cleanEnd;
    if (const auto prepared = prepare(); !prepared) {
        return prepared.fault();
    }
    const auto [tasks, inputs] = m_state.workLeft();
    MainUI::addLog(MainUI::Info, u"%1 in %2 to run (%3); the folder of the batch is '%4'"_s.arg(
                                     counted(inputs, u"input"_s), counted(tasks.size(), u"task"_s),
                                     m_plan.backend, m_plan.folder));
    if (auto done = runTasks(tasks); !done) {
        return done;
    }
    if (m_line.has(u"--detach"_s)) {
        printFolder();
        // Without tasks there is no job: what is left to merge is merged here.
        if (!tasks.isEmpty()) {
            return {};
        }
    }
    ExitStatus status = worstStatus(tasks);
    if (!m_plan.merged.isEmpty() && status == kDone && !interruption()) {
        status = merge();
    }
    return report(status);
}

QJsonObject failureJson(const BatchFailure &failure)
{
    return {{u"input"_s, failure.input},
            {u"cause"_s, failure.cause},
            {u"log"_s, failure.log},
            {u"command"_s, failure.command}};
}

/// The inputs of a batch as they are now: one that has changed, or is gone, is not done.
CommandResult<QVector<InputFile>> presentInputs(const BatchPlan &plan)
{
    auto inputs = inputsOfBatch(plan.folder);
    if (inputs) {
        for (InputFile &input : *inputs) {
            input.file = input.file.now();
        }
    }
    return inputs;
}

/// Of the files of --merge: waiting, done or failed; empty without the option.
QString mergeState(const BatchPlan &plan)
{
    const auto status = plan.statusOf(u"merge"_s);
    return plan.merged.isEmpty() ? QString()
           : !status             ? u"waiting"_s
           : *status == kDone    ? u"done"_s
                                 : u"failed"_s;
}

/// Prints the state of the batch in a folder.
CommandResult<void> printStatus(const CommandLine &line)
{
    const auto plan = BatchPlan::read(line.arguments[0]);
    if (!plan) {
        return plan.fault();
    }
    const auto inputs = presentInputs(*plan);
    if (!inputs) {
        return inputs.fault();
    }
    BatchState state(*plan, *inputs);
    state.update();
    const BatchCounts counts = state.counts();
    const bool runs = isRunning(*plan);
    const QVector<BatchFailure> failures = runs ? QVector<BatchFailure>() : state.failures();
    if (line.has(u"--json"_s)) {
        const QJsonObject object{{u"inputs"_s, counts.inputs},
                                 {u"done"_s, counts.done},
                                 {u"failed"_s, counts.failed},
                                 {u"left"_s, counts.left()},
                                 {u"rows"_s, counts.rows},
                                 {u"running"_s, runs},
                                 {u"backend"_s, plan->backend},
                                 {u"job"_s, plan->job},
                                 {u"merge"_s, mergeState(*plan)},
                                 {u"failures"_s, mapped<QJsonArray>(failures, failureJson)}};
        std::fputs(QJsonDocument(object).toJson().constData(), stdout);
        return {};
    }
    const QString job = plan->job.isEmpty() ? QString() : u", Slurm job "_s + plan->job;
    const QString merge = mergeState(*plan);
    std::printf("%s (%s%s%s)\n", qPrintable(countsText(counts)), runs ? "running" : "not running",
                qPrintable(job), qPrintable(merge.isEmpty() ? merge : u", merge "_s + merge));
    if (!failures.isEmpty()) {
        std::fputs(failureTable(failures).constData(), stdout);
    }
    return {};
}

/// The options that only the other form of the command has.
CommandResult<void> checkForm(const CommandLine &line)
{
    if (line.has(u"--json"_s) && !line.has(u"--status"_s)) {
        return badUsage(u"--json needs --status"_s);
    }
    if (!line.has(u"--status"_s) && !line.values.contains(u"--inputs"_s)) {
        return badUsage(u"--inputs LIST is required"_s);
    }
    if (!line.has(u"--status"_s) && line.arguments[0] == "-"_L1) {
        return badUsage(u"a batch needs a graph file, because its tasks read it later"_s);
    }
    if (line.has(u"--detach"_s) && line.value(u"--inputs"_s, {}) == "-"_L1 &&
        line.value(u"--backend"_s, {}) != "slurm"_L1) {
        return badUsage(u"--detach needs a list file or a pattern, because the batch reads it "
                        "after this program has ended"_s);
    }
    if (!line.has(u"--status"_s) && isBatchFolder(line.value(u"--inputs"_s, {}))) {
        return badUsage(u"--inputs: '%1' is the folder of a batch; a batch needs a list or a "
                        "pattern"_s.arg(line.value(u"--inputs"_s, {})));
    }
    if (line.has(u"--union"_s) && !line.values.contains(u"--merge"_s)) {
        return badUsage(u"--union needs --merge"_s);
    }
    return {};
}

} // namespace

CommandOptions batchOptions()
{
    return Session::options({{{"", kBatchOptions},
                              {"", kMergeOptions},
                              {"Graph", graphOptions().first(2)},
                              {"", graphRunOptions()}},
                             1,
                             u"one graph file, or one folder with --status, is required"_s});
}

CommandResult<void> batchCommand(const CommandLine &line)
{
    const auto session = Session::open(line);
    if (!session) {
        return session.fault();
    }
    if (const auto form = checkForm(line); !form) {
        return form.fault();
    }
    if (line.has(u"--status"_s)) {
        return printStatus(line);
    }
    const auto graph = BatchGraph::load(line, LoadedGraph::loadForRun);
    if (!graph) {
        return graph.fault();
    }
    if (Session::logProblems(graph->loaded->conflicts())) {
        return Fault{kUsage};
    }
    auto plan = BatchPlan::of(line, *graph);
    if (!plan) {
        return plan.fault();
    }
    auto backend = makeBackend(*plan);
    if (!backend) {
        return backend.fault();
    }
    Batch batch(line, *graph, *std::move(plan), *std::move(backend), **session);
    if (const auto checked = batch.check(); !checked) {
        return checked.fault();
    }
    return batch.run();
}
