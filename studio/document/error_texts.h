// Collects the error messages of work that a document does in the background.
#pragma once
#include "corvanta/log.h"

#include <QString>
#include <QStringList>

#include <mutex>

namespace corvanta::studio {

/// Keeps messages of level 1 and drops all others. Threads: any.
class ErrorTexts final : public LogSink
{
public:
    void add(const LogMessage &message) override
    {
        if (message.level == 1) {
            const std::lock_guard lock(m_mutex);
            m_texts << message.text.trimmed();
        }
    }
    /// One message per line.
    QString text() const
    {
        const std::lock_guard lock(m_mutex);
        return m_texts.join(u'\n');
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_texts; // guarded by m_mutex
};

} // namespace corvanta::studio
