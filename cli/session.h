// cli/session.h
// What the commands that run graphs have in common: messages, progress, Ctrl-C.
#pragma once
#include "command_line.h"
#include "corvanta/run.h"
#include "log_sinks.h"

/// Messages go to its log, and Ctrl-C stops cleanly, for as long as it lives.
class Session
{
public:
    /// --log-format, --quiet, --progress and --system-encoding, and those of `more`.
    static CommandOptions options(const CommandOptions &more);
    /// Null, and `error` filled, when the value of an option is none.
    static std::unique_ptr<Session> open(const CommandLine &line, QString *error);
    ~Session();
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Run a valid graph to its end; the exit status.
    int run(const CorvantaGraph &graph, const corvanta::ActionRegistry &registry,
            corvanta::RunOptions options);

private:
    explicit Session(std::unique_ptr<CommandLog> log);
    void waitForEnd(corvanta::Run *run);

    std::unique_ptr<CommandLog> m_log;
    bool m_showsProgress = false;
};
