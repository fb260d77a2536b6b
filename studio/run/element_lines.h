// Finds the action that a message about a line of a graph file concerns.
//
// Problems of a graph, such as an unknown type, name the file and the line and no action.
// Threads: plain data.
#pragma once
#include <QByteArray>
#include <QString>

#include <map>

namespace corvanta::studio {

class ElementLines
{
public:
    ElementLines() = default;
    /// `graph` is the text of the file, and `fileName` its name in messages.
    ElementLines(const QByteArray &graph, const QString &fileName);
    /// The id of the action whose element has the line that a message begins with, or that of the
    /// action to which the link on that line leads; empty for any other message.
    QString actionOf(const QString &message) const;

private:
    QString m_fileName;
    std::map<int, QString> m_actions; // by the first line of the element
};

} // namespace corvanta::studio
