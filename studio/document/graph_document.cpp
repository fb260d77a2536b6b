// The states of a document, what they change, and the signals about it.
#include "studio/document/graph_document.h"

#include "base/mapped.h"
#include "studio/document/document_file.h"
#include "studio/document/input_columns.h"
#include "studio/document/layered_layout.h"
#include "studio/document/problem_watch.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

/// A step of the undo stack: the states before and after it, which share what is equal.
class GraphEdit final : public QUndoCommand
{
public:
    /// `series` as in ParameterEdit.
    GraphEdit(GraphDocument &document, const QString &text, Content after, int series)
        : QUndoCommand(text)
        , m_document(document)
        , m_before(document.m_content)
        , m_after(std::move(after))
        , m_series(series)
    {
    }

    void redo() override { m_document.apply(m_after); }
    void undo() override { m_document.apply(m_before); }
    /// The stack merges only commands with the same id, and none with -1.
    int id() const override { return m_series == 0 ? -1 : 1; }
    bool mergeWith(const QUndoCommand *next) override
    {
        const auto *const later = static_cast<const GraphEdit *>(next);
        if (later->m_series != m_series || later->text() != text()) {
            return false;
        }
        m_after = later->m_after;
        return true;
    }

private:
    GraphDocument &m_document;
    Content m_before;
    Content m_after;
    int m_series;
};

namespace {

/// The nodes of a state by key, to compare states.
QHash<int, NodePtr> byKey(const Content &content)
{
    QHash<int, NodePtr> nodes;
    for (const NodePtr &node : content.nodes) {
        nodes.insert(node->key, node);
    }
    return nodes;
}

/// The links of `content` that `other` does not have.
QVector<LinkRef> linksOnlyIn(const Content &content, const Content &other)
{
    // Most edits change no link, and then both share one list.
    if (content.wires.constData() == other.wires.constData()) {
        return {};
    }
    QVector<LinkRef> rest =
        mapped<QVector<LinkRef>>(other.wires, [](const Wire &wire) { return wire.ends; });
    QVector<LinkRef> links;
    for (const Wire &wire : content.wires) {
        // Not each against all: most are at the same place.
        const qsizetype at = rest.indexOf(wire.ends);
        if (at < 0) {
            links.append(wire.ends);
        } else {
            rest.removeAt(at);
        }
    }
    return links;
}

QString textOf(const CorvantaGraph::Problems &problems)
{
    return mapped<QStringList>(problems, [](const auto &problem) { return problem.text; })
        .join(u'\n');
}

/// Places the actions without a position, for display only.
void placeForDisplay(Content *content)
{
    const bool isAnyPlaced = std::any_of(content->nodes.begin(), content->nodes.end(),
                                         [](const NodePtr &node) { return node->isPlaced; });
    double top = 0;
    for (const NodePtr &node : std::as_const(content->nodes)) {
        top = node->isPlaced ? qMax(top, node->position.y() + kLayerStep.height()) : top;
    }
    QStringList unplaced;
    for (const NodePtr &node : std::as_const(content->nodes)) {
        if (!node->isPlaced) {
            unplaced << node->id;
        }
    }
    const QMap<QString, QPointF> positions =
        layeredLayout(*content, unplaced, QPointF(0, isAnyPlaced ? top : 0));
    for (int i = 0; i < content->nodes.size(); ++i) {
        const QString id = content->nodes[i]->id;
        if (positions.contains(id)) {
            content->changeNode(i, [&](Node &node) { node.position = positions.value(id); });
        }
    }
}

} // namespace

// A new graph gets the version of this host, which its new actions have too.
GraphDocument::GraphDocument(const ActionRegistry &registry, QObject *parent)
    : QObject(parent)
    , m_registry(registry)
    , m_file(std::make_unique<DocumentFile>(*this))
    , m_problems(std::make_unique<ProblemWatch>(*this, [this] { Q_EMIT problemsChanged(); }))
    , m_columns(std::make_unique<InputColumns>(
          registry, [this](const QString &id) { Q_EMIT columnsChanged(id); }))
{
    constexpr double kGraphVersion = 4.12;
    m_graph.version = kGraphVersion;
    rebuildGraph();
    connect(&m_undo, &QUndoStack::cleanChanged, this,
            [this] { Q_EMIT modifiedChanged(isModified()); });
}

// The undo stack refers to the document.
GraphDocument::~GraphDocument()
{
    m_undo.disconnect(this);
    m_undo.clear();
}

// Also for graphs that were never saved.
QString GraphDocument::title() const
{
    return fileName().isEmpty() ? tr("Untitled") : QFileInfo(fileName()).fileName();
}

QByteArray GraphDocument::toXml() const
{
    return m_source.compose(m_content, m_graph.version);
}

/// The state of a graph that was read. `source` has its text if `isKept`; `nextKey` counts the keys
/// of the nodes.
Content GraphDocument::contentOf(const CorvantaGraph &graph, const SourceText &source, bool isKept)
{
    Content content;
    content.variables = graph.variables;
    content.nodes.reserve(graph.actions.size());
    for (int i = 0; i < graph.actions.size(); ++i) {
        const CorvantaGraph::Action &action = graph.actions[i];
        Node node;
        node.key = m_nextKey++;
        node.origin = isKept ? i : -1;
        node.id = action.id;
        node.element = action.parameters;
        node.position = canvasPosition({action.x, action.y});
        node.isPlaced = isKept ? source.hasPosition(i) : action.x != 0 || action.y != 0;
        node.comment = action.comment;
        content.nodes.append(std::make_shared<const Node>(node));
    }
    content.wires.reserve(graph.links.size());
    for (int i = 0; i < graph.links.size(); ++i) {
        const auto &[from, to, line] = graph.links[i];
        content.wires.append({{{from.action, from.pin}, {to.action, to.pin}}, isKept ? i : -1});
    }
    content.notes = source.notes();
    for (Note &note : content.notes) {
        note.key = m_nextKey++;
    }
    placeForDisplay(&content);
    return content;
}

// Nothing changes if the text cannot be parsed: the document stays usable.
GraphDocument::FileResult<void> GraphDocument::load(const QByteArray &text, const QString &file)
{
    SourceText source;
    const bool isKept = source.split(text);
    const auto graph = CorvantaGraph::parse(isKept ? source.knownPart() : text, file);
    if (!graph) {
        return Fault{FileError::CannotRead, textOf(graph.fault().code)};
    }
    m_undo.clear();
    m_runStates.clear();
    m_columns->clear();
    m_content = contentOf(*graph, source, isKept);
    m_source = isKept ? source : SourceText();
    m_graph.version = graph->version;
    m_graph.fileName = file;
    rebuildGraph();
    // The actions until now stay, because panels may show them.
    for (const NodePtr &node : std::as_const(m_content.nodes)) {
        makeItem(*node);
    }
    m_problems->schedule();
    return {};
}

/// Update everything that is derived from the content.
void GraphDocument::rebuildGraph()
{
    const double version = m_graph.version;
    const QString fileName = m_graph.fileName;
    m_graph = m_content.graph();
    m_graph.version = version;
    m_graph.fileName = fileName;
    // In place, because the actions refer to it.
    m_global = GlobalParameters();
    m_graph.applyTo(&m_global, {}, {});
    m_indexes.clear();
    for (int i = 0; i < m_content.nodes.size(); ++i) {
        m_indexes.insert(m_content.nodes[i]->id, i);
        if (const auto item = m_items.value(m_content.nodes[i]->key)) {
            item->setIdx(i);
        }
    }
}

/// Make the action of a node; none for a type that the module does not have.
void GraphDocument::makeItem(const Node &node)
{
    if (const std::shared_ptr<ActionItem> item = m_registry.create(node.element, &m_global)) {
        item->setIdx(m_indexes.value(node.id, -1));
        m_items.insert(node.key, item);
    }
}

/// Make a step of a change of the content.
void GraphDocument::push(const QString &text, const Change &change, int series)
{
    Content after = m_content;
    change(after);
    m_undo.push(new GraphEdit(*this, text, std::move(after), series)); // the stack owns it
}

/// Go to a state, and report what is different. Both undo and redo end here.
void GraphDocument::apply(const Content &next)
{
    const Content previous = std::exchange(m_content, next);
    rebuildGraph();
    updateItems(previous);
    reportNodes(previous);
    reportLinks(previous);
    if (previous.variables != m_content.variables) {
        Q_EMIT variablesChanged();
    }
    if (previous.notes != m_content.notes) {
        Q_EMIT notesChanged();
    }
    reportUpstream(previous);
    m_problems->schedule();
    m_file->scheduleRecovery();
}

/// Give the actions the parameters of their nodes.
void GraphDocument::updateItems(const Content &previous)
{
    const QHash<int, NodePtr> before = byKey(previous);
    for (const NodePtr &node : std::as_const(m_content.nodes)) {
        const NodePtr old = before.value(node->key);
        if (old != nullptr && old->revision == node->revision) {
            continue;
        }
        const auto item = m_items.value(node->key);
        if (item == nullptr) {
            makeItem(*node);
        } else if (node->key != m_upToDateKey) {
            restoreParameters(*item, node->element);
        }
    }
    const QHash<int, NodePtr> now = byKey(m_content);
    for (const NodePtr &node : previous.nodes) {
        if (const auto item = m_items.value(node->key); item && !now.contains(node->key)) {
            item->setIdx(-1); // as an action of no graph
        }
    }
}

// Removed links come first: their nodes still exist for those who draw them.
void GraphDocument::reportNodes(const Content &previous)
{
    const QHash<int, NodePtr> before = byKey(previous);
    const QHash<int, NodePtr> now = byKey(m_content);
    for (const LinkRef &link : linksOnlyIn(previous, m_content)) {
        Q_EMIT linkRemoved(link);
    }
    for (const NodePtr &node : previous.nodes) {
        if (!now.contains(node->key)) {
            m_runStates.remove(node->id);
            Q_EMIT actionRemoved(node->id);
        }
    }
    for (const NodePtr &node : std::as_const(m_content.nodes)) {
        const NodePtr old = before.value(node->key);
        if (old == nullptr) {
            Q_EMIT actionAdded(node->id);
        } else if (old != node) {
            if (old->id != node->id) {
                m_runStates.insert(node->id, m_runStates.take(old->id));
                Q_EMIT actionRenamed(old->id, node->id);
            }
            if (old->position != node->position) {
                Q_EMIT moved(node->id);
            }
            // Nodes are replaced for each of these reasons; this signal costs little.
            Q_EMIT actionChanged(node->id);
        }
    }
}

// Links come after the nodes that they join.
void GraphDocument::reportLinks(const Content &previous)
{
    for (const LinkRef &link : linksOnlyIn(m_content, previous)) {
        Q_EMIT linkAdded(link);
    }
}

/// The actions whose rows, and those whose input may differ now.
void GraphDocument::reportUpstream(const Content &previous)
{
    QSet<QString> changed;
    const QHash<int, NodePtr> before = byKey(previous);
    const bool isAll = previous.variables != m_content.variables;
    for (const NodePtr &node : std::as_const(m_content.nodes)) {
        const NodePtr old = before.value(node->key);
        // Nodes share the element unless it was edited.
        const bool isSame = old != nullptr && old->revision == node->revision;
        if (isAll || !isSame) {
            changed.insert(node->id);
        }
    }
    QSet<QString> inputs;
    for (const LinkRef &link :
         linksOnlyIn(previous, m_content) + linksOnlyIn(m_content, previous)) {
        inputs.insert(link.to.action);
    }
    changed.unite(inputs);
    QSet<QString> all;
    for (const QString &id : std::as_const(changed)) {
        if (contains(id) && !all.contains(id)) {
            const QStringList after = downstream(id);
            all.unite(QSet<QString>(after.begin(), after.end()));
        }
    }
    for (const Wire &wire : std::as_const(m_content.wires)) {
        if (all.contains(wire.ends.from.action)) {
            inputs.insert(wire.ends.to.action);
        }
    }
    // Not of the edited action: its panel, which shows them, is where the user works.
    m_columns->forget(inputs);
    for (const QString &id : std::as_const(inputs)) {
        Q_EMIT columnsChanged(id);
    }
    for (const QString &id : std::as_const(all)) {
        Q_EMIT upstreamChanged(id);
    }
}

QStringList GraphDocument::ids() const
{
    return mapped<QStringList>(m_content.nodes, [](const NodePtr &node) { return node->id; });
}

QString GraphDocument::type(const QString &id) const
{
    return contains(id) ? node(id).element.getName() : QString();
}

QString GraphDocument::comment(const QString &id) const
{
    return contains(id) ? node(id).comment : QString();
}

QPointF GraphDocument::position(const QString &id) const
{
    return contains(id) ? node(id).position : QPointF();
}

// A copy, because a slot may change the content while it goes through the links.
QVector<LinkRef> GraphDocument::links() const
{
    return mapped<QVector<LinkRef>>(m_content.wires, [](const Wire &wire) { return wire.ends; });
}

// More than one only in an invalid graph.
QVector<LinkRef> GraphDocument::linksTo(const PinRef &input) const
{
    QVector<LinkRef> all = links();
    all.removeIf([&](const LinkRef &link) { return link.to != input; });
    return all;
}

QVector<LinkRef> GraphDocument::linksFrom(const PinRef &output) const
{
    QVector<LinkRef> all = links();
    all.removeIf([&](const LinkRef &link) { return link.from != output; });
    return all;
}

ActionItem *GraphDocument::action(const QString &id) const
{
    return contains(id) ? m_items.value(node(id).key).get() : nullptr;
}

// Not by getIdx(): actions of other documents have numbers too.
QString GraphDocument::idOf(const ActionItem *action) const
{
    for (const NodePtr &node : m_content.nodes) {
        if (m_items.value(node->key).get() == action && action != nullptr) {
            return node->id;
        }
    }
    return {};
}

// The prototype counts: no action adds outputs by its parameters.
int GraphDocument::outputCount(const QString &id) const
{
    const ActionItem *const prototype = m_registry.prototype(type(id));
    int count = prototype == nullptr ? 0 : prototype->pinOutCount();
    // Links of an unknown action need pins too.
    for (const Wire &wire : m_content.wires) {
        if (wire.ends.from.action == id) {
            count = qMax(count, wire.ends.from.pin + 1);
        }
    }
    return count;
}

// An action that takes any number of inputs always shows one more than are linked.
int GraphDocument::inputCount(const QString &id) const
{
    int linked = 0;
    for (const Wire &wire : m_content.wires) {
        if (wire.ends.to.action == id) {
            linked = qMax(linked, wire.ends.to.pin + 1);
        }
    }
    const ActionItem *const item = action(id);
    const int usual = item == nullptr ? 0 : qMin(item->pinInCount(), maxInputs(id));
    return qMax(qMax(usual, linked), qMin(linked + 1, maxInputs(id)));
}

int GraphDocument::maxInputs(const QString &id) const
{
    const ActionItem *const prototype = m_registry.prototype(type(id));
    return prototype == nullptr ? 0 : prototype->maxPinIn();
}

namespace {

/// The actions that can be reached from one along the links, with itself.
template <class Next>
QStringList reachable(const QVector<Wire> &wires, const QString &id, Next next)
{
    QMultiHash<QString, QString> steps;
    for (const Wire &wire : wires) {
        const auto &[from, to] = next(wire.ends);
        steps.insert(from, to);
    }
    QStringList found{id};
    QSet<QString> seen{id};
    for (qsizetype i = 0; i < found.size(); ++i) {
        for (const QString &other : steps.values(found[i])) {
            if (!seen.contains(other)) {
                seen.insert(other);
                found << other;
            }
        }
    }
    return found;
}

} // namespace

QStringList GraphDocument::upstream(const QString &id) const
{
    return reachable(m_content.wires, id, [](const LinkRef &link) {
        return std::pair(link.to.action, link.from.action);
    });
}

QStringList GraphDocument::downstream(const QString &id, const LinkRef *without) const
{
    QVector<Wire> wires = m_content.wires;
    if (without != nullptr) {
        wires.removeIf([&](const Wire &wire) { return wire.ends == *without; });
    }
    return reachable(
        wires, id, [](const LinkRef &link) { return std::pair(link.from.action, link.to.action); });
}

const QVector<GraphProblem> &GraphDocument::problems() const
{
    return m_problems->problems();
}

TableSchema GraphDocument::inputColumns(const QString &id, int pin)
{
    return m_columns->columns(m_graph, id, pin);
}

// Actions that the last run did not have are idle.
const RunState &GraphDocument::runState(const QString &id) const
{
    static const RunState idle;
    const auto found = m_runStates.constFind(id);
    return found == m_runStates.constEnd() ? idle : *found;
}

// Called for each report of a run, so equal states must cost nothing.
void GraphDocument::setRunState(const QString &id, const RunState &state)
{
    if (contains(id) && runState(id) != state) {
        m_runStates.insert(id, state);
        Q_EMIT runStateChanged(id);
    }
}

// The signal comes when all states are gone.
void GraphDocument::clearRunStates()
{
    const auto before = std::exchange(m_runStates, {});
    for (const QString &id : before.keys()) {
        Q_EMIT runStateChanged(id);
    }
}

} // namespace corvanta::studio
