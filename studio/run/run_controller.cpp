// The steps of a run: prepare() shows it, a worker looks for files that it would overwrite,
// askAndRun() asks about them and starts the child, whose lines addMessages() and showProgress()
// take, and endRun() shows how it ended. cancel() ends it before the child is started.
#include "studio/run/run_controller.h"

#include "corvanta/main_ui.h"

#include <QApplication>
#include <QDir>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

/// The longer the time, the coarser the unit.
QString elapsedText(qint64 ms)
{
    constexpr qint64 kMinute = 60'000;
    if (ms < 1000) {
        return RunController::tr("%1 ms").arg(ms);
    }
    if (ms < kMinute) {
        return RunController::tr("%1 s").arg(static_cast<double>(ms) / 1000, 0, 'f', 1);
    }
    const QString minutes = QString::number(ms / kMinute % 60);
    const QString seconds = u"%1"_s.arg(ms / 1000 % 60, 2, 10, QLatin1Char('0'));
    const qint64 hours = ms / (60 * kMinute);
    return hours == 0 ? minutes + u':' + seconds
                      : u"%1:%2:%3"_s.arg(QString::number(hours), minutes.rightJustified(2, u'0'),
                                          seconds);
}

RunController::RunController(GraphDocument &document, QObject *parent, const QString &program)
    : QObject(parent)
    , m_document(document)
    , m_run(program)
{
    connect(&m_run, &GraphRun::messages, this, &RunController::addMessages);
    connect(&m_run, &GraphRun::progress, this, &RunController::showProgress);
    // What a run has written it may write again.
    connect(&m_run, &GraphRun::summary, this, [this](const RunSummary &summary) {
        for (const QString &file : summary.files) {
            m_mayReplace << file;
        }
        Q_EMIT filesWritten(summary.files);
    });
    connect(&m_run, &GraphRun::finished, this, &RunController::endRun);
}

void RunController::runAll()
{
    start({});
}

void RunController::runTo(const QStringList &ids)
{
    start(ids);
}

void RunController::rerun()
{
    // An action that was removed since is left out; without the others all of the graph is run.
    m_upTo.removeIf([this](const QString &id) { return !m_document.contains(id); });
    start(m_upTo);
}

/// The union of what each of them depends on, in the order of the graph.
CorvantaGraph RunController::partOf(const CorvantaGraph &graph, const QStringList &ids)
{
    CorvantaGraph all = graph;
    QSet<QString> needed;
    for (const QString &id : ids) {
        const CorvantaGraph part = graph.upTo(id);
        for (const CorvantaGraph::Action &action : part.actions) {
            needed << action.id;
        }
    }
    all.actions.removeIf([&](const auto &action) { return !needed.contains(action.id); });
    all.links.removeIf([&](const auto &link) { return !needed.contains(link.to.action); });
    return all;
}

void RunController::start(QStringList upTo)
{
    if (isRunning()) {
        return;
    }
    m_upTo = std::move(upTo);
    const CorvantaGraph &whole = m_document.graph();
    const CorvantaGraph graph = m_upTo.isEmpty() ? whole : partOf(whole, m_upTo);
    // The text of the document has the lines of its file, for messages.
    RunJob job{m_upTo.isEmpty() ? m_document.toXml() : graph.toXml(), m_document.fileName()};
    if (job.fileName.isEmpty()) {
        job.fileName = QDir::current().absoluteFilePath(m_document.title());
    }
    m_lines = ElementLines(job.graph, job.fileName);
    prepare(graph);
    m_worker.start(
        [this, graph, job, &registry = m_document.registry()](const std::stop_token &) {
            const QStringList existing = existingTargets(graph, registry);
            return [this, job, existing] { askAndRun(job, existing); };
        },
        // The child reports what is wrong with the files.
        [this, job](const QString &) { askAndRun(job, {}); });
}

/// Shows the actions of the run as waiting, and nothing of the run before.
void RunController::prepare(const CorvantaGraph &graph)
{
    m_log.clear();
    m_document.clearRunStates();
    m_running.clear();
    m_running.reserve(graph.actions.size());
    for (const CorvantaGraph::Action &action : graph.actions) {
        m_running << action.id;
    }
    setOpenStates(NodeState::Waiting);
    m_fraction = -1;
    m_isPreparing = true;
    setStatus(tr("Preparing\u2026"));
    Q_EMIT runningChanged(true);
}

void RunController::askAndRun(const RunJob &job, const QStringList &existing)
{
    QStringList unknown = existing;
    unknown.removeIf([this](const QString &file) { return m_mayReplace.contains(file); });
    if (!unknown.isEmpty() && !m_question(QApplication::activeWindow(), unknown)) {
        cancel();
        return;
    }
    // The question handles events; the user may have stopped the run in another window.
    if (!m_isPreparing) {
        return;
    }
    m_mayReplace += QSet<QString>(unknown.begin(), unknown.end());
    m_isPreparing = false;
    setStatus(tr("Running\u2026"));
    m_run.start(job);
}

void RunController::stop()
{
    if (m_isPreparing) {
        m_worker.stop();
        cancel();
    } else if (m_run.isRunning()) {
        setStatus(tr("Stopping\u2026"));
        m_run.stop();
    }
}

/// The actions look as if there had been no run.
void RunController::cancel()
{
    if (m_isPreparing) {
        m_isPreparing = false;
        m_document.clearRunStates();
        setStatus(tr("Not run"));
        Q_EMIT runningChanged(false);
    }
}

/// A click on a message leads to its action, also if the message names a line only.
void RunController::addMessages(QVector<RunMessage> messages)
{
    for (RunMessage &message : messages) {
        if (message.action.isEmpty()) {
            message.action = m_lines.actionOf(message.text);
        }
    }
    m_log.add(messages);
}

/// The user may have removed actions since the start of the run.
void RunController::showProgress(const RunProgress &progress)
{
    double sum = 0;
    int known = 0;
    for (const auto &[id, state] : progress.actions) {
        if (m_document.contains(id)) {
            m_document.setRunState(id, state);
        }
        sum += qMax(0.0, state.fraction);
        known += state.fraction >= 0 ? 1 : 0;
    }
    m_fraction = known > 0 ? sum / known : -1;
    Q_EMIT statusChanged(m_status);
}

/// An action that has ended keeps its state.
void RunController::setOpenStates(NodeState state)
{
    for (const QString &id : std::as_const(m_running)) {
        if (!m_document.contains(id)) {
            continue;
        }
        RunState changed = m_document.runState(id);
        if (changed.state <= NodeState::Running) {
            changed.state = state;
            m_document.setRunState(id, changed);
        }
    }
}

void RunController::endRun(RunEnd end)
{
    // A child that ended unexpectedly, or has found the graph invalid, has left actions open.
    setOpenStates(end == RunEnd::Done ? NodeState::Done : NodeState::Stopped);
    m_fraction = -1;
    setStatus(endText(end).arg(elapsedText(m_run.elapsedMs())));
    Q_EMIT runningChanged(false);
    Q_EMIT finished(end);
}

/// With "%1" in place of the time.
QString RunController::endText(RunEnd end) const
{
    switch (end) {
    case RunEnd::Done:
        return m_log.count(MainUI::Warning) > 0 ? tr("Done with warnings in %1") : tr("Done in %1");
    case RunEnd::Failed:
        return tr("Failed after %1");
    case RunEnd::Stopped:
        return tr("Stopped after %1");
    case RunEnd::Crashed:
        break;
    }
    return tr("Ended unexpectedly after %1");
}

void RunController::setStatus(const QString &status)
{
    m_status = status;
    Q_EMIT statusChanged(status);
}

} // namespace corvanta::studio
