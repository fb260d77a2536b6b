// Collects the messages about a graph file as JSON, and passes them on to the log.
#include "problem_list.h"

#include "corvanta/main_ui.h"
#include "log_sinks.h"

#include <QJsonObject>
#include <QRegularExpression>

using namespace Qt::StringLiterals;

ProblemList::ProblemList(const QString &graphFile)
    : m_next(MainUI::logSink())
    , m_graphFile(graphFile)
{
}

/// The text of a problem loses the place that the JSON has in members of its own.
void ProblemList::add(const LogMessage &message)
{
    m_next->add(message);
    // "Error: FILE:LINE: text"
    static const QRegularExpression form(u"^(?:Error|Warning): (.*?)(?::([0-9]+))?: (.*)$"_s,
                                         QRegularExpression::DotMatchesEverythingOption);
    QString text = message.text.trimmed();
    QJsonObject problem{{u"level"_s, message.level},
                        {u"severity"_s, severityOf(message.level)},
                        {u"file"_s, m_graphFile}};
    if (const auto match = form.match(text); match.hasMatch() && match.captured(1) == m_graphFile) {
        if (match.hasCaptured(2)) {
            problem[u"line"_s] = match.captured(2).toInt();
        }
        text = match.captured(3);
    }
    problem[u"message"_s] = text;
    const std::lock_guard lock(m_mutex);
    m_problems << problem;
}
