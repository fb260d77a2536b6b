// Messages, where they go, and whose they are.
#pragma once
#include "corvanta/export.h"

#include <QString>

/// One message, exactly as it was given.
struct LogMessage
{
    int level = 0;
    QString action; ///< id of the action in its graph; empty outside a run
    QString text;
};

/// Takes messages. Threads: called from any thread, several at a time.
class CORVANTA_EXPORT LogSink
{
public:
    LogSink() = default;
    LogSink(const LogSink &) = delete;
    LogSink &operator=(const LogSink &) = delete;
    virtual ~LogSink() = default;
    virtual void add(const LogMessage &message) = 0;
};

/// Says whose messages the current thread logs, for as long as it lives. The engine makes one on
/// each action's thread; a thread that an action starts makes one from LogScope::current() of its
/// starter.
class CORVANTA_EXPORT LogScope
{
public:
    struct Context
    {
        LogSink *sink = nullptr;
        QString action;
    };
    explicit LogScope(const Context &context);
    ~LogScope();
    LogScope(const LogScope &) = delete;
    LogScope &operator=(const LogScope &) = delete;
    static Context current();

private:
    Context m_previous;
};
