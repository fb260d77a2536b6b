// Writes messages to standard error, as text or as one JSON object per line, and to a log file.
// Standard output is for the results of commands only.
#pragma once
#include "command_line.h"
#include "corvanta/main_ui.h"
#include "corvanta/run.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>
#include <optional>

/// What became of the inputs of a shard.
struct InputCounts
{
    QString shard;      ///< "2/10"
    qint64 done = 0;    ///< their runs succeeded
    qint64 skipped = 0; ///< were done before
    qint64 failed = 0;
    qint64 left = 0; ///< not run, because the shard has ended early
};

/// What a run did.
struct RunSummary
{
    qint64 rows = 0; ///< that the readers sent
    double seconds = 0;
    double megabytesPerSecond = 0;          ///< of input files, in units of 1,000,000 bytes
    QStringList files;                      ///< that were written
    std::optional<InputCounts> inputs = {}; ///< of a graph that was run for many inputs
};

/// One line for people.
QString summaryText(const RunSummary &summary);

/// How a log writes.
struct LogOptions
{
    QString format = QStringLiteral("text"); ///< or "json"
    bool isQuiet = false;                    ///< only errors and warnings, and the reasons of these
    bool hasColors = false;                  ///< of errors and warnings, as text
    QString fileName = {}; ///< gets all messages, also those that isQuiet leaves out; empty: none
};

/// Writes messages, and keeps a progress line below them on a terminal. Threads: any.
class CommandLog : public LogSink
{
public:
    /// Create the log. The fault is a usage error for another format, kFailed for a file that
    /// cannot be written.
    static CommandResult<std::unique_ptr<CommandLog>> create(const LogOptions &options);

    void add(const LogMessage &message) final;
    void addBytesRead(qint64 n) final { m_bytesRead.fetch_add(n, std::memory_order_relaxed); }
    void addWrittenFile(const QString &name) final;
    /// Show `line` as the progress line until the next call; an empty line removes it.
    void setProgressLine(const QByteArray &line);
    /// Write the state of all actions as one line, except to the log file; `message` is its text.
    void addProgress(const LogMessage &message, const QVector<corvanta::ActionProgress> &all);
    /// Write what a run did, as the last line, also if the log is quiet.
    void addSummary(const RunSummary &summary);

    /// Bytes that were read from input files since the log was created.
    qint64 bytesRead() const { return m_bytesRead; }
    /// Messages are about the input `name` from now on, and say so. Call between runs.
    void setInput(const QString &name);
    /// Leave targets with the file name of `name`, which the command removes, out of
    /// writtenFiles(). Call between runs.
    void setTemporary(const QString &name);
    /// The targets that were completed since the log was created, in their order.
    QStringList writtenFiles() const;
    /// Those of the present input, each once.
    QStringList filesOfInput() const;
    /// Whether a message of level 1 was written about the present input. Threads: any.
    bool hasErrors() const { return m_hasErrors; }
    /// The first of these; empty if there is none.
    QString firstError() const;
    /// Where messages are written.
    std::FILE *stream() const { return m_out; }

    /// For create(). `out` is not closed.
    CommandLog(const LogOptions &options, std::FILE *out)
        : m_options(options)
        , m_out(out)
    {
    }

protected:
    /// The input that messages are about; empty for a single run.
    const QString &input() const { return m_input; }
    /// The bytes to write for a message, line feed included.
    virtual QByteArray format(const LogMessage &message) const = 0;
    /// The same for a summary; `message` holds it as text.
    virtual QByteArray format(const LogMessage &message, const RunSummary &summary) const = 0;
    /// The same for progress.
    virtual QByteArray format(const LogMessage &message,
                              const QVector<corvanta::ActionProgress> &all) const = 0;

private:
    struct CloseFile
    {
        void operator()(std::FILE *file) const { std::fclose(file); }
    };
    void write(const QByteArray &line, const char *color = "");
    void writeToFile(const QByteArray &line);

    LogOptions m_options;
    QString m_input;     // changes between runs only
    QString m_temporary; // the same
    std::FILE *m_out;
    std::unique_ptr<std::FILE, CloseFile> m_file; // null: none; written with the mutex held
    std::atomic<qint64> m_bytesRead = 0;
    std::atomic<bool> m_hasErrors = false;
    mutable std::mutex m_mutex; // held while a line is written, so that lines are never mixed
    QByteArray m_progress;      // guarded by m_mutex
    QString m_firstError;       // of the input; guarded by m_mutex
    QStringList m_written;      // for the input; guarded by m_mutex
    QStringList m_writtenBefore;
};

/// "error", "warning", "info" or "diagnostic".
QString severityOf(int level);

/// Report the text of the fault of `result`, if it has one, for `command` (empty: none was given),
/// in the form that the words of the command line ask for. Returns the exit status.
ExitStatus reportResult(const QString &command, const QStringList &words,
                        const CommandResult<void> &result);
