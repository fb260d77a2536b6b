// The runs of a document: run all of it or a part, stop, run again, and show the state of its
// actions.
//
// A run gets a copy of the graph, so that the user may edit it during the run. Before the run the
// user is asked about the files that it overwrites, once for each file.
// Threads: the GUI thread; files are looked up in the background.
#pragma once
#include "corvanta/edit/worker.h"
#include "studio/document/graph_document.h"
#include "studio/run/element_lines.h"
#include "studio/run/graph_run.h"
#include "studio/run/log_model.h"
#include "studio/run/overwritten_files.h"

#include <QSet>

namespace corvanta::studio {

class RunController final : public QObject
{
    Q_OBJECT

public:
    /// `document` must outlive the controller.
    explicit RunController(GraphDocument &document, QObject *parent = nullptr,
                           const QString &program = GraphRun::defaultProgram());

    // Start a run. Without effect while one is running.
    void runAll();
    /// Run only the actions that these depend on, and these: later actions write no files.
    void runTo(const QStringList &ids);
    /// Run the same part of the current graph again; all of it if nothing was run before.
    void rerun();

    /// End the run within a second. Files that it has not completed stay as they were.
    void stop();
    /// Also while the run is being prepared.
    bool isRunning() const { return m_isPreparing || m_run.isRunning(); }
    /// Of the current or last run; 0 while it is being prepared.
    qint64 elapsedMs() const { return m_isPreparing ? 0 : m_run.elapsedMs(); }
    LogModel *log() { return &m_log; }
    /// What the last run has done, as a sentence; empty before the first run.
    const QString &status() const { return m_status; }
    /// 0 to 1, of the actions that know it; negative: not known.
    double fraction() const { return m_fraction; }
    /// Of the child; 0 when none is running.
    qint64 processId() const { return m_run.processId(); }
    /// Null parents are the window of the application. For tests.
    void setQuestion(OverwriteQuestion question) { m_question = std::move(question); }

Q_SIGNALS:
    void runningChanged(bool isRunning);
    void statusChanged(const QString &status);
    /// The run has written these files; they may be inputs of other graphs.
    void filesWritten(const QStringList &files);
    void finished(corvanta::studio::RunEnd end);

private:
    void start(QStringList upTo);
    void prepare(const CorvantaGraph &graph);
    /// The graph with only the actions that `ids` depend on.
    static CorvantaGraph partOf(const CorvantaGraph &graph, const QStringList &ids);
    void askAndRun(const RunJob &job, const QStringList &existing);
    void addMessages(QVector<RunMessage> messages);
    void showProgress(const RunProgress &progress);
    void endRun(RunEnd end);
    /// The user has cancelled before the child was started.
    void cancel();
    /// Give the actions of the run that have not ended another state.
    void setOpenStates(NodeState state);
    QString endText(RunEnd end) const;
    void setStatus(const QString &status);

    GraphDocument &m_document;
    OverwriteQuestion m_question = askToOverwrite;
    Worker m_worker;
    GraphRun m_run;
    LogModel m_log;
    QStringList m_upTo;         // of the last run; empty: all
    QStringList m_running;      // the actions of the run
    ElementLines m_lines;       // of the text that is run
    QSet<QString> m_mayReplace; // files that the user has agreed to overwrite, or a run has written
    bool m_isPreparing = false;
    double m_fraction = -1;
    QString m_status;
};

/// "850 ms", "12.3 s", "4:07" or "1:04:07".
QString elapsedText(qint64 ms);

} // namespace corvanta::studio
