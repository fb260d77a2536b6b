// Backends that start processes of this machine: job.sh for each task, or GNU parallel for all.
//
// Each process leads a group, so that Ctrl-C reaches only this program, which ends the groups.
#include "base/platform/process.h"
#include "cli/batch/backend.h"
#include "cli/stop_signals.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>
#include <vector>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// A process that ends with this one, without input and output. Its errors are added to a log.
std::unique_ptr<QProcess> startQuietly(const QString &program, const QStringList &words,
                                       const QString &log = QProcess::nullDevice(),
                                       platform::ProcessorShare share = {})
{
    auto process = std::make_unique<QProcess>();
    platform::makeGroupThatEndsWithUs(*process, share);
    process->setStandardInputFile(QProcess::nullDevice());
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(log, QIODevice::Append);
    process->start(program, words);
    process->waitForStarted();
    return process;
}

/// Whether the process has not ended; waits for it for `milliseconds`.
bool isAlive(QProcess &process, int milliseconds)
{
    return process.state() != QProcess::NotRunning && !process.waitForFinished(milliseconds);
}

/// Ends processes as a user would, so that they remove their temporary files; kills what is left.
void end(std::vector<std::unique_ptr<QProcess>> *processes)
{
    constexpr int kPatience = 15000;
    for (const auto &process : *processes) {
        platform::terminateWithChildren(*process);
    }
    QElapsedTimer timer;
    timer.start();
    for (const auto &process : *processes) {
        if (isAlive(*process, std::max(1, kPatience - static_cast<int>(timer.elapsed())))) {
            platform::killWithChildren(*process);
        }
    }
    processes->clear();
}

/// As many processes as the machine has cores, or --max-running. Each has its own part of the
/// cores: threads that move between cores need more processor time (docs/guide/scaling.md).
class LocalBackend final : public Backend
{
public:
    explicit LocalBackend(const BatchPlan &plan)
        : m_script(plan.file(u"job.sh"_s))
        , m_workers(static_cast<size_t>(plan.maxRunning > 0 ? plan.maxRunning
                                                            : QThread::idealThreadCount()))
    {
    }

    CommandResult<void> start(const QVector<qsizetype> &tasks, BatchPlan * /*plan*/) override
    {
        m_waiting = tasks;
        fill();
        return {};
    }
    /// Starts the next tasks, too: there is no thread that waits for the processes.
    bool isRunning() override
    {
        for (auto &process : m_workers) {
            if (process && !isAlive(*process, 1)) {
                process.reset();
            }
        }
        fill();
        return std::ranges::any_of(m_workers,
                                   [](const auto &process) { return process != nullptr; });
    }
    void cancel() override
    {
        m_waiting.clear();
        std::erase(m_workers, nullptr);
        end(&m_workers);
    }

private:
    void fill()
    {
        for (size_t i = 0; i < m_workers.size() && !m_waiting.isEmpty(); ++i) {
            if (!m_workers[i]) {
                const QString task = QString::number(m_waiting.takeFirst());
                m_workers[i] = startQuietly(u"/bin/sh"_s, {m_script, task}, QProcess::nullDevice(),
                                            {i, m_workers.size()});
            }
        }
    }

    QString m_script;
    std::vector<std::unique_ptr<QProcess>> m_workers; // null: waits for a task
    QVector<qsizetype> m_waiting;
};

/// One process, which has all others.
class ParallelBackend final : public Backend
{
public:
    explicit ParallelBackend(const BatchPlan &plan)
        : m_plan(plan)
    {
    }

    CommandResult<void> start(const QVector<qsizetype> &tasks, BatchPlan * /*plan*/) override
    {
        // The journal says what is done, also after a change of the graph; this log cannot.
        QFile::remove(m_plan.file(u"joblog"_s));
        const QStringList options = optionWords();
        const auto checked =
            runProgram(u"parallel"_s, options + QStringList{u"-a"_s, QProcess::nullDevice()});
        if (!checked.isDone) {
            return badUsage(u"GNU parallel has rejected its options: %1"_s.arg(
                checked.errors.section(u'\n', 0, 0)));
        }
        const QString list = m_plan.file(u"tasks.txt"_s);
        QFile file(list);
        static_cast<void>(file.open(QIODevice::WriteOnly)); // parallel reports a missing file
        // Whole commands: in words of its own command line, parallel would replace {}, {.} and {#}.
        // They end with zeros, because the name of a folder may have a line feed.
        const QByteArray script = "/bin/sh " + shellWord(m_plan.file(u"job.sh"_s)).toUtf8() + ' ';
        for (const qsizetype task : tasks) {
            file.write(script + QByteArray::number(task) + '\0');
        }
        file.close();
        m_processes.push_back(startQuietly(u"parallel"_s, options + QStringList{u"-a"_s, list},
                                           m_plan.file(u"logs/parallel.log"_s)));
        return {};
    }
    bool isRunning() override
    {
        std::erase_if(m_processes, [](const auto &process) { return !isAlive(*process, 1); });
        return !m_processes.empty();
    }
    void cancel() override { end(&m_processes); }

private:
    QStringList optionWords() const
    {
        QStringList words{u"--will-cite"_s,     u"--joblog"_s,  m_plan.file(u"joblog"_s),
                          u"--resume-failed"_s, u"--termseq"_s, u"TERM,15000,KILL,25"_s,
                          u"--null"_s};
        words +=
            m_plan.maxRunning > 0 ? QStringList(u"-j%1"_s.arg(m_plan.maxRunning)) : QStringList();
        return words + m_plan.backendOptions;
    }

    BatchPlan m_plan;
    std::vector<std::unique_ptr<QProcess>> m_processes;
};

} // namespace

std::unique_ptr<Backend> makeLocalBackend(const BatchPlan &plan)
{
    return std::make_unique<LocalBackend>(plan);
}

std::unique_ptr<Backend> makeParallelBackend(const BatchPlan &plan)
{
    return std::make_unique<ParallelBackend>(plan);
}

/// Checks that the scheduler exists before anything is written.
CommandResult<std::unique_ptr<Backend>> makeBackend(const BatchPlan &plan)
{
    const QString program = plan.backend == "slurm"_L1      ? u"sbatch"_s
                            : plan.backend == "parallel"_L1 ? u"parallel"_s
                                                            : u"sh"_s;
    if (QStandardPaths::findExecutable(program).isEmpty()) {
        return badUsage(
            u"--backend %1: the program '%2' is not on the path"_s.arg(plan.backend, program));
    }
    return plan.backend == "slurm"_L1      ? makeSlurmBackend(plan)
           : plan.backend == "parallel"_L1 ? makeParallelBackend(plan)
                                           : makeLocalBackend(plan);
}

/// For the merge, which may take long: a signal ends it like a task.
void runScript(const QString &name)
{
    constexpr int kTick = 100; // milliseconds
    std::vector<std::unique_ptr<QProcess>> processes;
    processes.push_back(startQuietly(u"/bin/sh"_s, {name}));
    while (!processes.empty() && isAlive(*processes.front(), kTick)) {
        if (interruption()) {
            end(&processes);
        }
    }
}

/// For commands that end immediately, such as sbatch and squeue.
ProgramOutput runProgram(const QString &program, const QStringList &words)
{
    QProcess process;
    process.start(program, words, QIODevice::ReadOnly);
    constexpr int kPatience = 60000; // a controller may be slow
    if (!process.waitForStarted() || !process.waitForFinished(kPatience)) {
        return {false, {}, process.errorString()};
    }
    const auto textOf = [](const QByteArray &bytes) { return QString::fromUtf8(bytes).trimmed(); };
    return {process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0,
            textOf(process.readAllStandardOutput()), textOf(process.readAllStandardError())};
}
