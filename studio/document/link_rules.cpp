// Which links are possible, and the edits of links.
#include "studio/document/graph_document.h"
#include "studio/document/layered_layout.h"

#include <algorithm>
#include <climits>

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

// The link that is replaced does not count.
bool GraphDocument::isFree(const PinRef &to, QString *why, const LinkRef *replaced) const
{
    if (!contains(to.action)) {
        return refuse(why, tr("There is no such action."));
    }
    const int inputs = maxInputs(to.action);
    if (to.pin < 0 || to.pin >= inputs) {
        const QString none = tr("“%1” has no input.").arg(to.action);
        const QString other = tr("“%1” has no input %2.").arg(to.action, QString::number(to.pin));
        return refuse(why, inputs == 0 ? none : other);
    }
    for (const LinkRef &link : linksTo(to)) {
        if (replaced == nullptr || link != *replaced) {
            return refuse(why, tr("The input already has a link from “%1”; an input takes one.")
                                   .arg(link.from.action));
        }
    }
    return true;
}

// The simple reasons come first, because they are the clearest.
bool GraphDocument::canLink(const PinRef &from, const PinRef &to, QString *why,
                            const LinkRef *replaced) const
{
    if (from.action == to.action && contains(to.action)) {
        return refuse(why, tr("An action cannot get its own rows."));
    }
    if (!contains(from.action)) {
        return refuse(why, tr("There is no such action."));
    }
    const int outputs = outputCount(from.action);
    if (from.pin < 0 || from.pin >= outputs) {
        const QString none = tr("“%1” has no output.").arg(from.action);
        const QString other =
            tr("“%1” has no output %2.").arg(from.action, QString::number(from.pin));
        return refuse(why, outputs == 0 ? none : other);
    }
    if (!isFree(to, why, replaced)) {
        return false;
    }
    // A link that is re-routed keeps one end. If it is part of the way back, its other end decides,
    // and that way is gone.
    const QStringList after = downstream(to.action, replaced);
    if (after.contains(from.action)) {
        return refuse(why, tr("“%1” already gets rows from “%2”; the links would form a loop.")
                               .arg(from.action, to.action));
    }
    return true;
}

// The text names both ends, because an undo list shows many links.
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

// The link keeps its place in the file.
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

// An action with links would get a second meaning.
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

// The two links are at the place of the one that they replace.
bool GraphDocument::insertIntoLink(const QString &id, const LinkRef &link, QString *why)
{
    if (!canInsertIntoLink(id, link, why)) {
        return false;
    }
    const int index = m_content.indexOf(link);
    const auto isNear = [&](const QString &other) {
        const QPointF distance = position(id) - position(other);
        return qAbs(distance.x()) < kLayerStep.width() && qAbs(distance.y()) < kLayerStep.height();
    };
    const bool leadsRight = position(link.from.action).x() < position(link.to.action).x();
    const bool isNarrow = leadsRight && (isNear(link.from.action) || isNear(link.to.action));
    push(tr("Insert “%1” into a link").arg(id), [&](Content &content) {
        content.wires[index].ends.to = {id, 0};
        content.wires.insert(index + 1, {{{id, 0}, link.to}, -1});
        if (isNarrow) {
            placeBetween(&content, id, link);
        }
    });
    return true;
}

// One by one, so that a chain that is removed is joined at its ends.
void GraphDocument::removeAndJoin(const QStringList &ids)
{
    if (ids.isEmpty()) {
        return;
    }
    const QString text = ids.size() == 1
                             ? tr("Remove “%1” and join its neighbours").arg(ids.first())
                             : tr("Remove %1 actions and join their neighbours").arg(ids.size());
    push(text, [&](Content &content) {
        for (const QString &id : ids) {
            const auto first = std::ranges::min_element(content.wires, {}, [&](const Wire &wire) {
                return wire.ends.to.action == id ? wire.ends.to.pin : INT_MAX;
            });
            const bool hasInput = first != content.wires.end() && first->ends.to.action == id;
            const PinRef source = hasInput ? first->ends.from : PinRef{id, 0};
            for (Wire &wire : content.wires) {
                wire.ends.from = wire.ends.from.action == id ? source : wire.ends.from;
            }
            content.wires.removeIf([&](const Wire &wire) {
                return wire.ends.from.action == id || wire.ends.to.action == id;
            });
            content.nodes.removeIf([&](const NodePtr &node) { return node->id == id; });
        }
    });
}

} // namespace corvanta::studio
