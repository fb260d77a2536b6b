// Names and pins of a graph.
#include "corvanta/corvanta_graph.h"

#include "base/number.h"
#include "corvanta/global_parameters.h"

#include <QFileInfo>

#include <algorithm>
#include <unordered_set>

int CorvantaGraph::indexOf(const QString &id) const
{
    const auto found = std::ranges::find(actions, id, &Action::id);
    return found == actions.end() ? -1 : static_cast<int>(found - actions.begin());
}

CorvantaGraph CorvantaGraph::upTo(const QString &id) const
{
    std::unordered_set<QString> needed{id};
    // Add the sources of all needed actions until nothing changes. Simple, and fast enough for
    // graphs that a user edits.
    for (bool grew = true; grew;) {
        grew = false;
        for (const Link &link : links) {
            if (needed.contains(link.to.action) && !needed.contains(link.from.action)) {
                needed.insert(link.from.action);
                grew = true;
            }
        }
    }
    CorvantaGraph part = *this;
    part.actions.removeIf([&](const Action &action) { return !needed.contains(action.id); });
    part.links.removeIf([&](const Link &link) { return !needed.contains(link.to.action); });
    return part;
}

std::optional<CorvantaGraph::Pin> CorvantaGraph::parsePin(const QString &text)
{
    // A limit, because the engine makes all pins up to the highest linked one.
    constexpr int kMaxPins = 10000;
    // The last colon: ids may contain colons, pin numbers may not.
    const qsizetype colon = text.lastIndexOf(u':');
    quint64 number = 0;
    const QString digits = text.mid(colon + 1);
    if (colon <= 0 ||
        !corvanta::parseUInt(std::u16string_view(digits.toStdU16String()), kMaxPins, &number)) {
        return std::nullopt;
    }
    return Pin{text.left(colon), static_cast<int>(number)};
}

void CorvantaGraph::applyTo(GlobalParameters *global, const QMap<QString, QString> &given,
                            const QString &outDir) const
{
    global->setGraphDir(QFileInfo(fileName).absolutePath());
    global->setOutDir(outDir);
    // A graph without a version is new; GlobalParameters then keeps its infinite version.
    if (version >= 0) {
        global->setGraphVersion(version);
    }
    // The given variables come last, so that they replace those of the graph.
    for (const QMap<QString, QString> *set : {&variables, &given}) {
        for (auto it = set->begin(); it != set->end(); ++it) {
            global->setVariable(it.key(), it.value());
        }
    }
}
