// Checks what a graph file cannot show by itself: types, pins, loops and variables.
#include "base/mapped.h"
#include "base/nearest_name.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "graph/problem_list.h"

#include <QRegularExpression>

#include <unordered_set>

using namespace Qt::StringLiterals;
using corvanta::ActionRegistry;
using corvanta::mapped;
using corvanta::nearestNameHint;
using corvanta::ProblemList;

namespace {

/// Calls `visit(text, name, line)` for every attribute and text of an element and its descendants;
/// the name of a text is that of its element.
template <class F> void forEachText(const XMLNode &root, F visit)
{
    // Not recursive: parameters may be nested deeply.
    QVector<XMLNode> open;
    open.append(root);
    while (!open.isEmpty()) {
        const XMLNode node = open.takeLast();
        for (const QString &name : node.attributeNames()) {
            visit(QString::fromUtf16(node.getAttribute(name.toLatin1().constData())), name,
                  node.line());
        }
        visit(node.text(), node.getName(), node.line());
        for (int i = 0; i < node.nChildNode(); ++i) {
            open.append(node.getChildNode(i));
        }
    }
}

void checkTypes(const CorvantaGraph &graph, const ActionRegistry &registry, ProblemList &problems)
{
    for (const CorvantaGraph::Action &action : graph.actions) {
        if (registry.prototype(action.parameters.getName()) == nullptr) {
            const QString type = action.parameters.getName();
            problems.add(action.parameters.line(),
                         u"the action '%1' has the unknown type '%2'%3"_s.arg(
                             action.id, type, nearestNameHint(type, registry.typeNames())));
        }
    }
}

void checkLinkEnd(const CorvantaGraph &graph, const ActionRegistry &registry,
                  const CorvantaGraph::Link &link, bool isInput, ProblemList &problems)
{
    const CorvantaGraph::Pin &end = isInput ? link.to : link.from;
    const int index = graph.indexOf(end.action);
    if (index < 0) {
        const auto ids = mapped<QStringList>(
            graph.actions, [](const CorvantaGraph::Action &action) { return action.id; });
        problems.add(link.line, u"link refers to unknown action '%1'%2"_s.arg(
                                    end.action, nearestNameHint(end.action, ids)));
        return;
    }
    const ActionItem *type = registry.prototype(graph.actions[index].parameters.getName());
    if (type == nullptr) {
        return; // reported by checkTypes()
    }
    // The number of input pins may depend on parameters and grow with links, so the maximum counts.
    const int pins = isInput ? type->maxPinIn() : type->pinOutCount();
    if (end.pin >= pins) {
        problems.add(link.line, u"the action '%1' (%2) has no %3 pin %4"_s.arg(
                                    end.action, QLatin1StringView(type->getTypeName()),
                                    isInput ? u"input"_s : u"output"_s, QString::number(end.pin)));
    }
}

void checkLinks(const CorvantaGraph &graph, const ActionRegistry &registry, ProblemList &problems)
{
    std::unordered_set<QString> taken;
    for (const CorvantaGraph::Link &link : graph.links) {
        checkLinkEnd(graph, registry, link, false, problems);
        checkLinkEnd(graph, registry, link, true, problems);
        // Rows of two links would be mixed in the order of their threads.
        const QString input = link.to.action + u':' + QString::number(link.to.pin);
        if (!taken.insert(input).second) {
            problems.add(link.line, u"two links lead to the input pin '%1'"_s.arg(input));
        }
    }
}

/// Number of links into each action from an action of the graph, by index. Links with an unknown
/// end are not counted: they are reported elsewhere and cannot be part of a loop.
QVector<int> countInputs(const CorvantaGraph &graph)
{
    QVector<int> inputs;
    inputs.resize(graph.actions.size());
    for (const CorvantaGraph::Link &link : graph.links) {
        const int to = graph.indexOf(link.to.action);
        if (to >= 0 && graph.indexOf(link.from.action) >= 0) {
            ++inputs[to];
        }
    }
    return inputs;
}

/// The actions that are part of a loop or depend on one, by id. Repeatedly removes the actions
/// without remaining inputs; these are left.
QStringList actionsOfLoops(const CorvantaGraph &graph)
{
    QVector<int> inputs = countInputs(graph);
    QVector<int> free;
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs[i] == 0) {
            free << i;
        }
    }
    for (int i = 0; i < free.size(); ++i) {
        for (const CorvantaGraph::Link &link : graph.links) {
            const int to = graph.indexOf(link.to.action);
            if (to >= 0 && link.from.action == graph.actions[free[i]].id && --inputs[to] == 0) {
                free << to;
            }
        }
    }
    QStringList stuck;
    for (int i = 0; i < inputs.size(); ++i) {
        if (inputs[i] > 0) {
            stuck << graph.actions[i].id;
        }
    }
    return stuck;
}

void checkLoops(const CorvantaGraph &graph, ProblemList &problems)
{
    const QStringList stuck = actionsOfLoops(graph);
    if (!stuck.isEmpty()) {
        const int line = graph.actions[graph.indexOf(stuck.first())].line;
        problems.add(line, u"the links form a loop (actions in it or after it: %1)"_s.arg(
                               stuck.join(", "_L1)));
    }
}

/// Every `${NAME}` of the parameters must have a value; `given` wins over the graph's variables.
void checkVariables(const CorvantaGraph &graph, const QMap<QString, QString> &given,
                    ProblemList &problems)
{
    // The built-in variables have values in every GlobalParameters, so they are never unknown.
    GlobalParameters global;
    graph.applyTo(&global, given, QString());
    for (const CorvantaGraph::Action &action : graph.actions) {
        forEachText(action.parameters, [&](const QString &text, const QString &where, int line) {
            QStringList unknown;
            global.expandString(text, &unknown);
            unknown.removeDuplicates();
            for (const QString &name : unknown) {
                problems.add(line,
                             u"the action '%1' uses the unknown variable '${%2}' in '%3'"_s.arg(
                                 action.id, name, where));
            }
        });
    }
}

} // namespace

QStringList CorvantaGraph::usedVariables() const
{
    static const QRegularExpression variable(u"\\$\\{([^}]*)\\}"_s);
    QStringList used;
    for (const Action &action : actions) {
        forEachText(action.parameters, [&](const QString &text, const QString &, int) {
            for (const QRegularExpressionMatch &match : variable.globalMatch(text)) {
                used << match.captured(1);
            }
        });
    }
    used.removeDuplicates();
    return used;
}

bool CorvantaGraph::hasOutputPin(const ActionRegistry &registry, const Pin &pin) const
{
    const int index = indexOf(pin.action);
    const ActionItem *const type =
        index < 0 ? nullptr : registry.prototype(actions[index].parameters.getName());
    return type != nullptr && pin.pin >= 0 && pin.pin < type->pinOutCount();
}

CorvantaGraph::Problems CorvantaGraph::validate(const ActionRegistry &registry,
                                                const QMap<QString, QString> &given) const
{
    ProblemList problems(fileName);
    // In this order: a user corrects types first, because other problems may follow from them.
    checkTypes(*this, registry, problems);
    checkLinks(*this, registry, problems);
    checkLoops(*this, problems);
    checkVariables(*this, given, problems);
    return problems.problems();
}
