// The order of events: readyRead gives parts of lines, finished the rest of them and the status. A
// child that cannot be started gives only errorOccurred.
#include "studio/run/graph_run.h"

#include "corvanta/main_ui.h"

#include <QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

#ifdef Q_OS_WIN
constexpr QLatin1StringView kProgram("/corvanta.exe");
#else
constexpr QLatin1StringView kProgram("/corvanta");
#endif

/// The graph itself comes through standard input: a temporary file could remain, and its name would
/// be in the messages.
QStringList argumentsOf(const RunJob &job)
{
    QStringList words{u"run"_s,          u"-"_s,    u"--name"_s,     job.fileName,
                      u"--log-format"_s, u"json"_s, u"--progress"_s, u"lines"_s};
    for (auto it = job.variables.begin(); it != job.variables.end(); ++it) {
        words << u"--set"_s << it.key() + u'=' + it.value();
    }
    if (!job.outDir.isEmpty()) {
        words << u"--out-dir"_s << job.outDir;
    }
    return words;
}

/// Ends with `exitStatus` if there was at least one error, in the graph or the run.
bool isFailure(int exitStatus)
{
    return exitStatus == 1 || exitStatus == 2;
}

} // namespace

GraphRun::GraphRun(const QString &program, QObject *parent)
    : QObject(parent)
    , m_program(program)
{
    m_killTimer.setSingleShot(true);
    m_killTimer.setInterval(kKillMs);
    // A run prints nothing there, except for a graph that writes to standard output.
    m_process.setStandardOutputFile(QProcess::nullDevice());
    connect(&m_killTimer, &QTimer::timeout, &m_process, &QProcess::kill);
    connect(&m_process, &QProcess::readyReadStandardError, this, [this] { readLines(false); });
    connect(&m_process, &QProcess::finished, this, &GraphRun::childEnded);
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        // Every other error is followed by finished().
        if (error == QProcess::FailedToStart) {
            logError(tr("Error: cannot start '%1': %2").arg(m_program, m_process.errorString()));
            end(RunEnd::Crashed);
        }
    });
}

GraphRun::~GraphRun()
{
    // Its signals must not arrive in an object that is being destroyed.
    m_process.disconnect(this);
    m_process.terminate();
    if (!m_process.waitForFinished(kKillMs)) {
        m_process.kill();
        m_process.waitForFinished();
    }
}

QString GraphRun::defaultProgram()
{
    return QCoreApplication::applicationDirPath() + kProgram;
}

void GraphRun::start(const RunJob &job)
{
    Q_ASSERT(!m_isRunning);
    m_isRunning = true;
    m_isStopped = false;
    m_partial.clear();
    m_timer.start();
    // The graph is written when the child has started; QProcess keeps it until then.
    m_process.start(m_program, argumentsOf(job));
    m_process.write(job.graph);
    m_process.closeWriteChannel();
}

/// The signal ends a run cleanly in a few milliseconds, unless the child waits for a call of the
/// system.
void GraphRun::stop()
{
    if (m_isRunning && !std::exchange(m_isStopped, true)) {
        m_process.terminate();
        m_killTimer.start();
    }
}

/// Called for each part of the output: the last line may be incomplete.
void GraphRun::readLines(bool isEnd)
{
    m_partial += m_process.readAllStandardError();
    const qsizetype complete = isEnd ? m_partial.size() : m_partial.lastIndexOf('\n') + 1;
    QVector<RunMessage> found;
    for (qsizetype from = 0; from < complete;) {
        const qsizetype end = m_partial.indexOf('\n', from);
        const qsizetype next = end < 0 ? complete : end + 1;
        addText(m_partial.mid(from, next - from), &found);
        from = next;
    }
    m_partial.remove(0, complete);
    if (!found.isEmpty()) {
        Q_EMIT messages(found);
    }
}

/// Progress that arrives between messages is reported before them; both are shown together.
void GraphRun::addText(const QByteArray &line, QVector<RunMessage> *found)
{
    const std::optional<RunLine> parsed = parseRunLine(line);
    if (!parsed) {
        // For example of a library that ends the program.
        *found << RunMessage{MainUI::Diagnostic, {}, QString::fromLocal8Bit(line).trimmed()};
    } else if (const auto *const message = std::get_if<RunMessage>(&*parsed)) {
        *found << *message;
    } else if (const auto *const all = std::get_if<RunProgress>(&*parsed)) {
        Q_EMIT progress(*all);
    } else {
        Q_EMIT summary(std::get<RunSummary>(*parsed));
    }
}

void GraphRun::childEnded(int status, QProcess::ExitStatus how)
{
    readLines(true);
    const bool isNormal = how == QProcess::NormalExit && (status == 0 || isFailure(status));
    if (m_isStopped) {
        // It may have been complete before the signal arrived.
        end(isNormal && status == 0 ? RunEnd::Done : RunEnd::Stopped);
    } else if (isNormal) {
        end(status == 0 ? RunEnd::Done : RunEnd::Failed);
    } else {
        // The status of a signal that the child has handled is normal for QProcess.
        logError(
            tr("Error: the run ended unexpectedly (status %1). Files that it had not completed "
               "are unchanged, and so is the graph. Run it again.")
                .arg(status));
        end(RunEnd::Crashed);
    }
}

/// The signal comes last: its receiver may start the next run.
void GraphRun::end(RunEnd how)
{
    m_killTimer.stop();
    m_elapsedMs = m_timer.elapsed();
    m_isRunning = false;
    Q_EMIT finished(how);
}

void GraphRun::logError(const QString &text)
{
    Q_EMIT messages({{MainUI::Error, {}, text}});
}

} // namespace corvanta::studio
