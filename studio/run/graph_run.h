// Runs a graph in a child process, "corvanta run -", so that nothing that a run does can harm the
// editor and its unsaved graphs.
//
// The child gets a copy of the graph through its standard input. It runs as the command would: a
// run that is stopped or killed leaves every file that it replaces as it was.
// Threads: the GUI thread.
#pragma once
#include "studio/run/run_lines.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QProcess>
#include <QTimer>

namespace corvanta::studio {

/// What is run.
struct RunJob
{
    QByteArray graph; ///< the text of a graph file
    QString fileName; ///< for messages, and the folder of relative names; need not exist
    QMap<QString, QString> variables = {}; ///< override those of the graph; each is used by it
    QString outDir = {};                   ///< empty: the folder of the graph
};

/// How a run has ended.
enum class RunEnd {
    Done,
    Failed,  ///< an action failed, or the graph is invalid; the log says why
    Stopped, ///< by stop()
    Crashed, ///< the child ended unexpectedly, or could not be started
};

class GraphRun final : public QObject
{
    Q_OBJECT

public:
    /// `program` is the command.
    explicit GraphRun(const QString &program = defaultProgram(), QObject *parent = nullptr);
    ~GraphRun() override; ///< ends the child as stop() does, and waits for it
    /// The command `corvanta` in the folder of this program.
    static QString defaultProgram();

    /// Start a run. Call only when none is running.
    void start(const RunJob &job);
    /// Make the run end within a second: cleanly or, if it does not react, by killing it. Without
    /// effect when none is running.
    void stop();
    bool isRunning() const { return m_isRunning; }
    /// Of the current run or, if none is running, of the last one.
    qint64 elapsedMs() const { return m_isRunning ? m_timer.elapsed() : m_elapsedMs; }
    /// Of the child; 0 when none is running.
    qint64 processId() const { return m_process.processId(); }

    /// From stop() to killing the child.
    static constexpr int kKillMs = 700;

Q_SIGNALS:
    /// What has arrived together; a run may write thousands of messages per second.
    void messages(const QVector<corvanta::studio::RunMessage> &messages);
    void progress(const corvanta::studio::RunProgress &progress);
    void summary(const corvanta::studio::RunSummary &summary);
    /// After everything else.
    void finished(corvanta::studio::RunEnd end);

private:
    /// Take the complete lines that have arrived, at the end of the run also an incomplete one.
    void readLines(bool isEnd);
    void addText(const QByteArray &line, QVector<RunMessage> *found);
    void childEnded(int status, QProcess::ExitStatus how);
    void end(RunEnd how);
    /// Log an error of the run as a whole.
    void logError(const QString &text);

    QString m_program;
    QProcess m_process;
    QTimer m_killTimer;
    QElapsedTimer m_timer;
    qint64 m_elapsedMs = 0;
    QByteArray m_partial; // of a line
    bool m_isRunning = false;
    bool m_isStopped = false;
};

} // namespace corvanta::studio
