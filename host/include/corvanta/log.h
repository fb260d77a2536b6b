// Messages, the sinks that receive them, and the action that each message belongs to. A sink also
// receives how much was read and which files were written, for a summary of the run.
//
// MainUI::addLog() sends a message to the sink of the calling thread's LogScope, or to the
// program's sink if the thread has none.
#pragma once
#include "corvanta/export.h"

#include <QString>

/// One message, exactly as it was logged.
struct LogMessage
{
    int level = 0;  ///< see MainUI::LogLevel
    QString action; ///< id of the action in its graph; empty outside a run
    QString text;
};

/// Receives messages. Threads: called from several threads in parallel.
class CORVANTA_EXPORT LogSink
{
public:
    LogSink() = default;
    LogSink(const LogSink &) = delete;
    LogSink &operator=(const LogSink &) = delete;
    virtual ~LogSink() = default;
    /// Take a message. Must not block for long, because the action waits, and must not call an
    /// action or log itself.
    virtual void add(const LogMessage &message) = 0;
    /// `n` bytes were read from an input file. Called for every block; the same rules as add().
    virtual void addBytesRead(qint64 n) { static_cast<void>(n); }
    /// The target `name` is complete.
    virtual void addWrittenFile(const QString &name) { static_cast<void>(name); }
};

/// Determines for which action the current thread logs, as long as the object exists. The engine
/// creates one on each action's thread. A thread that an action starts must create one from
/// LogScope::current() of the starting thread.
class CORVANTA_EXPORT LogScope
{
public:
    /// Where the messages of a thread go, and whose they are.
    struct Context
    {
        LogSink *sink = nullptr; ///< null: the program's; must outlive the LogScope
        QString action;          ///< id of the action, copied into LogMessage::action
    };
    /// Replace the context of the calling thread; the destructor restores the previous one, so
    /// scopes are nested. Destroy a scope on the thread that created it.
    explicit LogScope(const Context &context);
    ~LogScope();
    LogScope(const LogScope &) = delete;
    LogScope &operator=(const LogScope &) = delete;
    /// The context of the calling thread.
    static Context current();

private:
    Context m_context;
    const LogScope *m_previous; // of this thread; null: none
};
