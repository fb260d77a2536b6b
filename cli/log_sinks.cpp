// Messages as text and as JSON.
//
// A progress line on a terminal is erased before a message and written again after it.
#include "log_sinks.h"

#include "base/platform/terminal.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <cstdio>

using namespace Qt::StringLiterals;

namespace {

class TextLog final : public CommandLog
{
public:
    using CommandLog::CommandLog;

private:
    QByteArray format(const LogMessage &message) const override
    {
        // Most texts begin with their severity.
        const QString text = message.text.trimmed();
        const bool saysSeverity = text.startsWith("error"_L1, Qt::CaseInsensitive) ||
                                  text.startsWith("warning"_L1, Qt::CaseInsensitive);
        const QString severity = saysSeverity ? QString() : severityOf(message.level) + ": "_L1;
        const QString place = message.action.isEmpty() ? QString() : u"[%1] "_s.arg(message.action);
        return (place + severity + text + u'\n').toUtf8();
    }
};

/// One object per line with the keys in a fixed order; the text is unchanged.
class JsonLog final : public CommandLog
{
public:
    using CommandLog::CommandLog;

private:
    static QByteArray quoted(const QString &text)
    {
        const QByteArray array =
            QJsonDocument(QJsonObject{{u"v"_s, text}}).toJson(QJsonDocument::Compact);
        return array.mid(5, array.size() - 6); // after {"v": and before }
    }
    QByteArray format(const LogMessage &message) const override
    {
        return "{\"level\":" + QByteArray::number(message.level) +
               ",\"severity\":" + quoted(severityOf(message.level)) +
               ",\"action\":" + quoted(message.action) + ",\"message\":" + quoted(message.text) +
               "}\n";
    }
};

} // namespace

QString severityOf(int level)
{
    switch (level) {
    case MainUI::Error:
        return u"error"_s;
    case MainUI::Warning:
        return u"warning"_s;
    case MainUI::Info:
        return u"info"_s;
    default:
        return u"diagnostic"_s;
    }
}

std::unique_ptr<CommandLog> CommandLog::create(const QString &format, bool quiet)
{
    if (format == "json"_L1) {
        // Messages that libraries write to standard error would not be JSON.
        return std::make_unique<JsonLog>(quiet, corvanta::platform::takeErrorStream());
    }
    return format == "text"_L1 ? std::make_unique<TextLog>(quiet, stderr)
                               : std::unique_ptr<CommandLog>();
}

void CommandLog::add(const LogMessage &message)
{
    if (m_quiet && message.level > MainUI::Warning) {
        return;
    }
    const QByteArray line = format(message);
    const std::lock_guard lock(m_mutex);
    // Return to the first column and erase to the end of the line, then write the progress again.
    const char *const clear = m_progress.isEmpty() ? "" : "\r\033[K";
    std::fprintf(m_out, "%s%s%s", clear, line.constData(), m_progress.constData());
    std::fflush(m_out);
}

void CommandLog::setProgressLine(const QByteArray &line)
{
    const std::lock_guard lock(m_mutex);
    // Nothing to erase: standard error may be a file, which must not get escapes.
    if (line.isEmpty() && m_progress.isEmpty()) {
        return;
    }
    m_progress = line;
    std::fprintf(m_out, "\r\033[K%s", line.constData());
    std::fflush(m_out);
}
