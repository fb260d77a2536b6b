// Problems begin with "Error: FILE:LINE: " or "Warning: FILE:LINE: ". The file may contain colons
// and digits too, so it is compared as a whole.
#include "studio/run/element_lines.h"

#include "corvanta/corvanta_graph.h"

#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

ElementLines::ElementLines(const QByteArray &graph, const QString &fileName)
    : m_fileName(fileName)
{
    // What cannot be parsed has no actions.
    const CorvantaGraph::Loaded parsed = CorvantaGraph::parse(graph, fileName);
    if (!parsed) {
        return;
    }
    for (const CorvantaGraph::Action &action : parsed->actions) {
        m_actions[action.line] = action.id;
    }
    for (const CorvantaGraph::Link &link : parsed->links) {
        m_actions.emplace(link.line, link.to.action);
    }
}

/// A problem inside an element, such as a level, has a line between those of two elements.
QString ElementLines::actionOf(const QString &message) const
{
    const QString place = u": %1:"_s.arg(m_fileName);
    const qsizetype at = message.indexOf(place);
    if (at < 0) {
        return {};
    }
    const qsizetype digits = at + place.size();
    const int line = message.mid(digits, message.indexOf(u':', digits) - digits).toInt();
    // The last element that begins on this line or before it.
    const auto after = m_actions.upper_bound(line);
    return after == m_actions.begin() ? QString() : std::prev(after)->second;
}

} // namespace corvanta::studio
