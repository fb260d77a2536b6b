// cli/log_sinks.h
// Messages on standard error: for people, or one JSON object a line for programs.
#pragma once
#include "corvanta/main_ui.h"

#include <atomic>
#include <cstdio>
#include <memory>
#include <mutex>

/// Writes messages; keeps a progress line at the bottom of a terminal out of their way.
/// Threads: any.
class CommandLog : public LogSink
{
public:
    /// "text" or "json"; null for anything else. `quiet` leaves out what is neither error nor
    /// warning.
    static std::unique_ptr<CommandLog> create(const QString &format, bool quiet);

    void add(const LogMessage &message) final;
    /// Show `line` at the bottom of the terminal until the next one; empty removes it.
    void setProgressLine(const QByteArray &line);

    CommandLog(bool quiet, std::FILE *out)
        : m_quiet(quiet)
        , m_out(out)
    {
    }

protected:
    virtual QByteArray format(const LogMessage &message) const = 0;

private:
    bool m_quiet;
    std::FILE *m_out;
    std::mutex m_mutex;
    QByteArray m_progress; // guarded by m_mutex
};

/// "error", "warning", "info" or "diagnostic".
QString severityOf(int level);
