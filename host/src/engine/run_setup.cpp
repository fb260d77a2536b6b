// Sets up a run: makes its actions, connects their pins, and finds the order of actions that use
// one file.
#include "corvanta/action_registry.h"
#include "engine/graph_links.h"
#include "engine/run_private.h"
#include "graph/problem_list.h"

#include <algorithm>

namespace corvanta {

/// Adds an action that reads an output pin of the graph.
void Run::Private::addListener(const CorvantaGraph &graph, Listener &listener,
                               const PinOptions &options)
{
    add(listener.id, std::move(listener.action), 1, options);
    connect(graph, listener.from, nodes.size() - 1, 0);
    if (listener.maxRows >= 0) {
        RunNode &node = *nodes[static_cast<size_t>(graph.indexOf(listener.from.action))];
        node.ports->out(listener.from.pin).setLimit(listener.maxRows, &node.control->yieldRequest);
    }
}

/// Makes the actions with their pins and connects them; starts nothing.
void Run::Private::build(const CorvantaGraph &graph, const ActionRegistry &registry,
                         RunOptions &options)
{
    graph.applyTo(&global, options.variables, options.outDir);
    global.setCompression(options.compression);
    if (options.log != nullptr) {
        ownLog.setTarget(options.log);
        log = &ownLog;
    }
    stopTimeout = options.stopTimeout;
    const PinOptions pinOptions{options.batchRows,
                                options.yieldAtBatches ? &control.yieldRequest : nullptr};
    for (const CorvantaGraph::Action &action : graph.actions) {
        add(action.id, registry.create(action.parameters, &global),
            highestLinkedPin(graph, action.id) + 1, pinOptions);
    }
    for (const CorvantaGraph::Link &link : graph.links) {
        connect(graph, link.from, static_cast<size_t>(graph.indexOf(link.to.action)), link.to.pin);
    }
    endUnlinkedPins(graph);
    if (options.keepPartial) {
        for (const CorvantaGraph::Link &link : graph.links) {
            giveOwnControl(graph, link.from);
        }
        for (const Listener &listener : options.listeners) {
            giveOwnControl(graph, listener.from);
        }
    }
    // After endUnlinkedPins(), which would end the pins of the listeners: the graph has no links to
    // them.
    for (Listener &listener : options.listeners) {
        addListener(graph, listener, pinOptions);
    }
    orderActions(graph, options.listeners);
}

/// The files of an action, as far as it declares them.
FileUser Run::Private::filesOf(const CorvantaGraph &graph, size_t index) const
{
    const RunNode &node = *nodes[index];
    const auto position = static_cast<qsizetype>(index);
    FileUser user{node.id, position < graph.actions.size() ? graph.actions[position].line : 0};
    if (const auto *const files = dynamic_cast<const ActionParameters *>(node.action.get())) {
        user.targets = files->targets();
        user.inputs = files->inputs();
    }
    return user;
}

/// Makes actions that use one file wait for each other, or finds that they exclude each other.
void Run::Private::orderActions(const CorvantaGraph &graph, const std::vector<Listener> &listeners)
{
    QVector<FileUser> users;
    for (size_t i = 0; i < nodes.size(); ++i) {
        users.append(filesOf(graph, i));
    }
    const QVector<std::pair<int, int>> links = linkedNodes(graph, listeners);
    const TargetOrder order = orderByTargets(users, links);
    ProblemList list(graph.fileName);
    for (const TargetConflict &conflict : order.conflicts) {
        list.add(conflict.line, conflict.text);
    }
    problems = list.problems();
    const bool hasNoCircle = isForest(static_cast<int>(nodes.size()), links + waitingNodes(order));
    sequence.set(order);
    files.setOrder(order);
    for (const auto &node : nodes) {
        Ports &ports = *node->ports;
        ports.endWithReaders(writesFiles(*node->action) ? nullptr : &node->control->yieldRequest);
        if (hasNoCircle) {
            ports.gate().boundAlways();
        }
        if (sequence.startsLater(node->action->m_idx)) {
            ports.gate().hold();
        }
    }
}

/// Ends the data of every input pin that has no link: it is a table without rows. Otherwise an
/// action that reads it would wait forever.
void Run::Private::endUnlinkedPins(const CorvantaGraph &graph)
{
    for (const auto &node : nodes) {
        for (int pin = 0; pin < node->ports->pinsIn(); ++pin) {
            if (!isLinked(graph, {node->id, pin})) {
                node->ports->gate().end(pin, std::make_shared<const TableSchema>());
            }
        }
    }
}

void Run::Private::add(const QString &id, std::unique_ptr<ActionItem> action, int pinsIn,
                       const PinOptions &options)
{
    auto node = std::make_unique<RunNode>();
    node->id = id;
    node->type = QString::fromLatin1(action->getTypeName());
    node->ports = std::make_unique<Ports>(pinsIn, action->m_nPinOut, options);
    action->m_idx = static_cast<int>(nodes.size());
    // Pins above the highest linked one do not exist; ActionItem treats them as empty tables.
    action->m_nPinIn = pinsIn;
    action->m_ports = node->ports.get();
    action->m_control = node->control = &control;
    node->action = std::move(action);
    nodes.push_back(std::move(node));
}

void Run::Private::connect(const CorvantaGraph &graph, const CorvantaGraph::Pin &from, size_t to,
                           int pin)
{
    RunNode &source = *nodes[static_cast<size_t>(graph.indexOf(from.action))];
    source.ports->out(from.pin).addReader(&nodes[to]->ports->gate(), pin);
}

/// Makes an action whose rows another one reads end alone.
void Run::Private::giveOwnControl(const CorvantaGraph &graph, const CorvantaGraph::Pin &from)
{
    RunNode &node = *nodes[static_cast<size_t>(graph.indexOf(from.action))];
    node.action->m_control = node.control = &node.ownControl;
}

} // namespace corvanta
