// Submits a batch as a Slurm job array, with the commands of Slurm (sbatch, squeue, scancel).
//
// A task whose node fails is queued again by Slurm (--requeue). A merge is a second job that
// depends on the array.
#include "base/mapped.h"
#include "cli/batch/backend.h"
#include "corvanta/main_ui.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QThread>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace corvanta;

namespace {

/// "1-3,7" for 1, 2, 3, 7: the limit of a job's text is a few thousand characters.
QString rangesOf(const QVector<qsizetype> &tasks)
{
    QStringList ranges;
    for (qsizetype i = 0; i < tasks.size();) {
        qsizetype last = i;
        while (last + 1 < tasks.size() && tasks[last + 1] == tasks[last] + 1) {
            ++last;
        }
        ranges << (last == i
                       ? QString::number(tasks[i])
                       : u"%1-%2"_s.arg(QString::number(tasks[i]), QString::number(tasks[last])));
        i = last + 1;
    }
    return ranges.join(u',');
}

/// The option for a file of sbatch. A percent sign begins a pattern there. After a backslash in the
/// name there are no patterns, so that all tasks share the file.
QString outputOption(const BatchPlan &plan, const QString &pattern)
{
    QString folder = plan.file(u"logs/"_s);
    folder =
        folder.contains(u'\\') ? folder.replace(u'\\', "\\\\"_L1) : folder.replace(u'%', "%%"_L1);
    return u"--output="_s + folder + pattern;
}

class SlurmBackend final : public Backend
{
public:
    explicit SlurmBackend(const BatchPlan &plan)
        : m_plan(plan)
    {
    }

    CommandResult<void> start(const QVector<qsizetype> &tasks, BatchPlan *plan) override;
    bool isRunning() override;
    void cancel() override;
    bool isCancelled() override;
    bool mergesItself() const override { return true; }

private:
    CommandResult<QString> submit(const QStringList &words, const QString &script) const;
    bool hasFailedTask() const;
    bool isQueued();
    void warnAboutHeld(const QString &queue);

    BatchPlan m_plan;
    QVector<qsizetype> m_tasks; // without those at the front that have ended
    QElapsedTimer m_sinceQuery;
    bool m_wasQueued = true;
    bool m_hasWarned = false;
};

/// Submits a job; returns its number.
CommandResult<QString> SlurmBackend::submit(const QStringList &words, const QString &script) const
{
    const QStringList all = QStringList{u"--parsable"_s, u"--requeue"_s, u"--open-mode=append"_s,
                                        u"--job-name="_s + QFileInfo(m_plan.graphFile).fileName()} +
                            words + m_plan.backendOptions + QStringList(m_plan.file(script));
    const ProgramOutput submitted = runProgram(u"sbatch"_s, all);
    if (!submitted.isDone) {
        // Its text does not say that the array is too long (MaxArraySize).
        const bool isAboutArray = submitted.errors.contains("array"_L1, Qt::CaseInsensitive);
        return badUsage(u"the scheduler has rejected the job: %1%2"_s.arg(
            submitted.errors,
            isAboutArray ? u"; a larger --per-task makes fewer tasks"_s : QString()));
    }
    return submitted.output.section(u';', 0, 0); // the name of a cluster may follow
}

CommandResult<void> SlurmBackend::start(const QVector<qsizetype> &tasks, BatchPlan *plan)
{
    m_tasks = tasks;
    m_sinceQuery.invalidate(); // it was about an earlier job
    const QString limit =
        m_plan.maxRunning > 0 ? u'%' + QString::number(m_plan.maxRunning) : QString();
    const auto job =
        submit({u"--array="_s + rangesOf(tasks) + limit, outputOption(m_plan, u"slurm-%a.out"_s)},
               u"job.sh"_s);
    if (!job) {
        return job.fault();
    }
    m_plan.job = *job;
    m_plan.mergeJob.clear();
    if (!m_plan.merged.isEmpty() && !hasFailedTask()) {
        const auto merge =
            submit({u"--dependency=afterok:"_s + *job, u"--kill-on-invalid-dep=yes"_s,
                    outputOption(m_plan, u"slurm-merge.out"_s)},
                   u"merge.sh"_s);
        if (!merge) {
            cancel();
            return merge.fault();
        }
        m_plan.mergeJob = *merge;
    }
    plan->job = m_plan.job;
    plan->mergeJob = m_plan.mergeJob;
    return {};
}

/// Whether a task of an earlier job has failed: its output may be an old one, and a merge that
/// depends on the new job only would take it.
bool SlurmBackend::hasFailedTask() const
{
    const QDir statuses(m_plan.file(u"status"_s));
    return std::ranges::any_of(statuses.entryList(QDir::Files),
                               [&](const QString &task) { return m_plan.statusOf(task) != kDone; });
}

/// Whether the controller still has the jobs. One that does not answer may come back.
bool SlurmBackend::isQueued()
{
    constexpr qint64 kPause = 2000; // between two questions to the controller, milliseconds
    if (m_sinceQuery.isValid() && m_sinceQuery.elapsed() < kPause) {
        return m_wasQueued;
    }
    m_sinceQuery.start();
    const QStringList jobs = m_plan.mergeJob.isEmpty() ? QStringList(m_plan.job)
                                                       : QStringList{m_plan.job, m_plan.mergeJob};
    const ProgramOutput queue = runProgram(
        u"squeue"_s, {u"--noheader"_s, u"--format=%i %T %r"_s, u"--jobs="_s + jobs.join(u',')});
    m_wasQueued = queue.isDone ? !queue.output.isEmpty() : !queue.errors.contains("Invalid job"_L1);
    warnAboutHeld(queue.output);
    return m_wasQueued;
}

/// A task that Slurm has put on hold waits until a person releases it.
void SlurmBackend::warnAboutHeld(const QString &queue)
{
    const auto lines = queue.split(u'\n');
    const auto held = std::ranges::find_if(
        lines, [](const QString &line) { return line.contains("held"_L1, Qt::CaseInsensitive); });
    if (held != lines.end() && !m_hasWarned) {
        m_hasWarned = true;
        MainUI::addLog(MainUI::Warning,
                       u"Warning: Slurm holds a task: %1; \"scontrol release %2\" starts it"_s.arg(
                           *held, held->section(u' ', 0, 0)));
    }
}

/// The tasks leave their status before Slurm forgets the job. One file is looked up per call, not
/// those of all tasks: the folder is on a file server.
bool SlurmBackend::isRunning()
{
    while (!m_tasks.isEmpty() && m_plan.statusOf(QString::number(m_tasks.first()))) {
        m_tasks.removeFirst();
    }
    if (m_tasks.isEmpty() && (m_plan.mergeJob.isEmpty() || m_plan.statusOf(u"merge"_s))) {
        return false;
    }
    return isQueued();
}

void SlurmBackend::cancel()
{
    QStringList jobs{m_plan.job};
    if (!m_plan.mergeJob.isEmpty()) {
        jobs << m_plan.mergeJob;
    }
    static_cast<void>(runProgram(u"scancel"_s, jobs));
    // Until the tasks have removed their temporary files; Slurm kills them after a while.
    constexpr int kSeconds = 45;
    for (int i = 0; i < kSeconds && isQueued(); ++i) {
        QThread::sleep(1);
    }
}

/// Slurm forgets jobs some minutes after their end.
bool SlurmBackend::isCancelled()
{
    const ProgramOutput states =
        runProgram(u"squeue"_s, {u"--noheader"_s, u"--format=%T"_s, u"--states=all"_s,
                                 u"--jobs="_s + m_plan.job});
    return states.output.contains("CANCELLED"_L1);
}

} // namespace

std::unique_ptr<Backend> makeSlurmBackend(const BatchPlan &plan)
{
    return std::make_unique<SlurmBackend>(plan);
}
