// Messages, progress and the end of the commands that run graphs.
#pragma once
#include "command_line.h"
#include "corvanta/run.h"
#include "log_sinks.h"

#include <QElapsedTimer>

#include <functional>
#include <optional>

/// As long as it exists, messages go to its log, and a signal stops its run cleanly. At most one
/// exists at a time.
class Session
{
public:
    /// `more` with the options of the log, of the progress and of the system encoding.
    static CommandOptions options(CommandOptions more);
    /// The line of --log-format, for commands that accept no other of these options.
    static std::span<const OptionInfo> logFormatOption();
    /// Create a session with the options of `line`. The fault is a usage error.
    static CommandResult<std::unique_ptr<Session>> open(const CommandLine &line);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    using IsError = std::function<bool(const CorvantaGraph::Problem &)>;
    /// Log what is wrong with a graph: errors where `isError` is true, else warnings; without it
    /// all are errors. Returns whether there was an error.
    static bool logProblems(const CorvantaGraph::Problems &problems, const IsError &isError = {});
    /// Run a valid graph to its end. The fault is kFailed, that of a signal, or kUsage for actions
    /// whose files exclude each other; it is reported.
    CommandResult<void> run(const CorvantaGraph &graph, const corvanta::ActionRegistry &registry,
                            corvanta::RunOptions options);

    /// Show `line` as the progress of work that is not a run, if progress is wanted; an empty line
    /// ends it.
    void showLine(const QByteArray &line);

    /// What the run of one input did.
    struct InputResult
    {
        qint64 rows = 0;
        QStringList files;  ///< that were written
        QString firstError; ///< empty: none
    };
    /// The next run is that of the input `name`: messages name it, and the summary is that of all
    /// runs.
    void beginInput(const QString &name);
    InputResult inputResult() const;
    /// Messages are no longer about an input. The summary, which is then always written, has
    /// `counts`.
    void endInputs(const InputCounts &counts);

    /// The rows and, unless the list is empty, the files that the summary names, in place of those
    /// of the last run.
    void setResult(qint64 rows, const QStringList &files = {});
    /// Do not report files with the name of this one, in any folder: the command removes it.
    void setTemporary(const QString &name);
    /// The rows that the readers of the last run have sent.
    qint64 rows() const { return m_rows.value_or(0); }

private:
    explicit Session(std::unique_ptr<CommandLog> log);
    /// `choice` is the value of --progress; `isJson` the form of the messages.
    void setProgress(const QString &choice, bool isJson);
    /// Wait and show the progress.
    void waitForEnd(corvanta::Run *run);
    /// Show the progress after the time of `timer`, if it is wanted.
    void showProgress(const corvanta::Run &run, const QElapsedTimer &timer);

    /// Log which files a run has written that did not read all of its input.
    void reportIncomplete();

    std::unique_ptr<CommandLog> m_log; // the program's sink
    bool m_isVerbose = false;
    bool m_showsProgress = false;  // as one line that changes, for people
    bool m_writesProgress = false; // as messages, for programs
    enum class Summary { Never, OfFiles, Always } m_summary = Summary::Never;
    QElapsedTimer m_timer;
    std::optional<qint64> m_rows = {}; // read by the last run; none before a run
    qint64 m_earlierRows = 0;          // read by the runs of earlier inputs
    std::optional<InputCounts> m_inputs = {};
    QStringList m_files; // of setResult()
};
