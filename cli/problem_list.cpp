// Collects the messages about a graph file as JSON, and passes them on to the log.
#include "problem_list.h"

#include "corvanta/main_ui.h"
#include "log_sinks.h"

#include <QJsonObject>

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
    QString text = message.text.trimmed();
    QJsonObject problem{{u"level"_s, message.level},
                        {u"severity"_s, severityOf(message.level)},
                        {u"file"_s, m_graphFile}};
    // "Error: FILE:LINE: text" or "Error: FILE: text"
    for (const QString &label : {u"Error: "_s, u"Warning: "_s}) {
        const QString place = label + m_graphFile + u':';
        if (!text.startsWith(place)) {
            continue;
        }
        text.remove(0, place.size());
        bool hasLine = false;
        const qsizetype lineEnd = text.indexOf(u": "_s);
        if (const int line = text.first(std::max<qsizetype>(lineEnd, 0)).toInt(&hasLine); hasLine) {
            problem[u"line"_s] = line;
            text.remove(0, lineEnd + 1);
        }
        text = text.trimmed();
    }
    problem[u"message"_s] = text;
    const std::lock_guard lock(m_mutex);
    m_problems << problem;
}
