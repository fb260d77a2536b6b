// Collects the problems that a command logs, for check --json.
#pragma once
#include "corvanta/log.h"

#include <QJsonArray>

#include <mutex>

/// Passes messages on to the sink of its creation, and keeps them. Threads: any.
class ProblemList final : public LogSink
{
public:
    /// `graphFile` is the name that the messages begin with.
    explicit ProblemList(const QString &graphFile);
    void add(const LogMessage &message) override;
    /// One object per message: level, severity, file, line (absent where a problem has none) and
    /// the text after them.
    const QJsonArray &problems() const { return m_problems; }

private:
    LogSink *m_next;
    QString m_graphFile;
    std::mutex m_mutex;
    QJsonArray m_problems;
};
