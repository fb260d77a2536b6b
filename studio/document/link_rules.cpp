// Which links are possible, and the edits of links.
#include "studio/document/graph_document.h"

#include <algorithm>

namespace corvanta::studio {

namespace {

/// Returns false with the reason.
bool refuse(QString *why, const QString &reason)
{
    if (why != nullptr) {
        *why = reason;
    }
    return false;
}

} // namespace

bool GraphDocument::canLink(const PinRef &from, const PinRef &to, QString *why,
                            const LinkRef *replaced) const
{
    if (!contains(from.action) || !contains(to.action)) {
        return refuse(why, tr("There is no such action."));
    }
    if (from.action == to.action) {
        return refuse(why, tr("An action cannot get its own rows."));
    }
    if (from.pin < 0 || from.pin >= outputCount(from.action)) {
        return refuse(
            why, outputCount(from.action) == 0
                     ? tr("“%1” has no output.").arg(from.action)
                     : tr("“%1” has no output %2.").arg(from.action, QString::number(from.pin)));
    }
    if (to.pin < 0 || to.pin >= maxInputs(to.action)) {
        return refuse(why,
                      maxInputs(to.action) == 0
                          ? tr("“%1” has no input.").arg(to.action)
                          : tr("“%1” has no input %2.").arg(to.action, QString::number(to.pin)));
    }
    for (const LinkRef &link : linksTo(to)) {
        if (replaced == nullptr || link != *replaced) {
            return refuse(why, tr("The input already has a link from “%1”; an input takes one.")
                                   .arg(link.from.action));
        }
    }
    // The replaced link starts or ends at one of these pins, so it cannot hide a loop.
    if (downstream(to.action).contains(from.action)) {
        return refuse(why, tr("“%1” already gets rows from “%2”; the links would form a loop.")
                               .arg(from.action, to.action));
    }
    return true;
}

bool GraphDocument::addLink(const PinRef &from, const PinRef &to, QString *why)
{
    if (!canLink(from, to, why)) {
        return false;
    }
    push(tr("Link “%1” to “%2”").arg(from.action, to.action), [&](Content &content) {
        content.wires.append({{from, to}, -1});
    });
    return true;
}

bool GraphDocument::reroute(const LinkRef &link, const LinkRef &ends, QString *why)
{
    const int index = m_content.indexOf(link);
    if (index < 0) {
        return refuse(why, tr("There is no such link."));
    }
    if (link == ends) {
        return true;
    }
    if (!canLink(ends.from, ends.to, why, &link)) {
        return false;
    }
    push(tr("Re-route link to “%1”").arg(ends.to.action),
         [&](Content &content) { content.wires[index].ends = ends; });
    return true;
}

bool GraphDocument::canInsertIntoLink(const QString &id, const LinkRef &link, QString *why) const
{
    if (m_content.indexOf(link) < 0) {
        return refuse(why, tr("There is no such link."));
    }
    const bool isLinked =
        std::any_of(m_content.wires.begin(), m_content.wires.end(), [&](const Wire &wire) {
            return wire.ends.from.action == id || wire.ends.to.action == id;
        });
    if (isLinked) {
        return refuse(why, tr("“%1” already has links.").arg(id));
    }
    if (outputCount(id) == 0) {
        return refuse(why, tr("“%1” has no output.").arg(id));
    }
    return canLink(link.from, {id, 0}, why);
}

bool GraphDocument::insertIntoLink(const QString &id, const LinkRef &link, QString *why)
{
    if (!canInsertIntoLink(id, link, why)) {
        return false;
    }
    const int index = m_content.indexOf(link);
    push(tr("Insert “%1” into a link").arg(id), [&](Content &content) {
        content.wires[index].ends.to = {id, 0};
        content.wires.insert(index + 1, {{{id, 0}, link.to}, -1});
    });
    return true;
}

} // namespace corvanta::studio
