// Writes messages to standard error, as text or as one JSON object per line. Standard output is for
// the results of commands only.
#pragma once
#include "corvanta/main_ui.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>

/// Writes messages, and keeps a progress line below them on a terminal. Threads: any.
class CommandLog : public LogSink
{
public:
    /// Create the log for the format "text" or "json"; null for any other. `quiet` suppresses all
    /// messages but errors and warnings.
    static std::unique_ptr<CommandLog> create(const QString &format, bool quiet);

    void add(const LogMessage &message) final;
    /// Show `line` as the progress line until the next call; an empty line removes it.
    void setProgressLine(const QByteArray &line);

    /// For create(). `out` is not closed.
    CommandLog(bool quiet, std::FILE *out)
        : m_quiet(quiet)
        , m_out(out)
    {
    }

protected:
    /// The bytes to write for a message, line feed included.
    virtual QByteArray format(const LogMessage &message) const = 0;

private:
    bool m_quiet;
    std::FILE *m_out;
    std::mutex m_mutex;    // held while a line is written, so that lines are never mixed
    QByteArray m_progress; // guarded by m_mutex
};

/// "error", "warning", "info" or "diagnostic".
QString severityOf(int level);
