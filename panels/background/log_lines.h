// Collects the messages of work on another thread, to show them in a panel.
#pragma once
#include "corvanta/log.h"
#include "panels/note_label.h"

#include <QVector>

#include <mutex>

namespace corvanta {

/// A line for a NoteLabel. An empty text: nothing to show.
struct Note
{
    NoteLabel::Kind kind = NoteLabel::Kind::Remark;
    QString text;
};

/// Keeps the first errors and warnings. Threads: any.
class LogLines final : public LogSink
{
public:
    void add(const LogMessage &message) override;
    /// The first error with its reason or, if there is none, the first warning.
    Note worst() const;

private:
    mutable std::mutex m_mutex;
    QVector<LogMessage> m_messages; // the first ones; guarded by m_mutex
};

} // namespace corvanta
