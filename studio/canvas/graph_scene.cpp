// Follows the signals of the document, and turns the mouse into edits.
#include "studio/canvas/graph_scene.h"

#include "base/mapped.h"
#include "studio/canvas/link_drag.h"

#include <QGraphicsSceneHelpEvent>
#include <QGraphicsSceneMouseEvent>
#include <QSignalBlocker>
#include <QUndoStack>

#include <algorithm>
#include <cmath>

namespace corvanta::studio {

// The document is the only source: edits by the user come back as its signals.
GraphScene::GraphScene(GraphDocument &document, QObject *parent)
    : QGraphicsScene(parent)
    , m_document(document)
    , m_drag(std::make_unique<LinkDrag>(*this))
{
    using Document = GraphDocument;
    connect(&document, &Document::actionAdded, this, &GraphScene::addNode);
    connect(&document, &Document::actionRemoved, this, &GraphScene::removeNode);
    connect(&document, &Document::actionRenamed, this, &GraphScene::renameNode);
    connect(&document, &Document::actionChanged, this, &GraphScene::refreshPins);
    connect(&document, &Document::moved, this, &GraphScene::refreshPins);
    connect(&document, &Document::linkAdded, this, &GraphScene::addLinkItem);
    connect(&document, &Document::linkRemoved, this, &GraphScene::removeLinkItem);
    connect(&document, &Document::reloaded, this, &GraphScene::rebuild);
    connect(&document, &Document::problemsChanged, this, &GraphScene::showProblems);
    connect(&document, &Document::notesChanged, this, &GraphScene::showNotes);
    connect(&document, &Document::runStateChanged, this, [this](const QString &id) {
        if (NodeItem *const item = node(id)) {
            item->update();
        }
        for (LinkItem *const item : std::as_const(m_links)) {
            if (item->link().from.action == id) {
                item->update();
            }
        }
    });
    connect(this, &QGraphicsScene::selectionChanged, this, &GraphScene::selectionMoved);
    connect(this, &QGraphicsScene::focusItemChanged, this, &GraphScene::selectionMoved);
    rebuild();
}

// The items go later, with the base class.
GraphScene::~GraphScene()
{
    // Items that are destroyed change the selection.
    disconnect();
    blockSignals(true);
    m_drag->cancel();
}

/// Make all items, for a new or reloaded document.
void GraphScene::rebuild()
{
    m_drag->cancel();
    m_marked = nullptr;
    m_nodes.clear();
    m_links.clear();
    m_notes.clear();
    clear();
    for (const QString &id : m_document.ids()) {
        addNode(id);
    }
    for (const LinkRef &link : m_document.links()) {
        addLinkItem(link);
    }
    showProblems();
    showNotes();
}

// An item stays with its note, so that it keeps the selection and the focus.
void GraphScene::showNotes()
{
    const QVector<NoteItem *> before = std::exchange(m_notes, {});
    for (const Note &note : m_document.notes()) {
        const auto found = std::ranges::find(before, note.key, &NoteItem::key);
        if (found != before.end()) {
            (*found)->setNote(note);
            m_notes.append(*found);
        } else {
            m_notes.append(new NoteItem(note)); // owned by the scene
            addItem(m_notes.last());
        }
    }
    for (NoteItem *const item : before) {
        if (!m_notes.contains(item)) {
            delete item;
        }
    }
}

// Links are reported later, when both of their nodes exist.
void GraphScene::addNode(const QString &id)
{
    auto *const item = new NodeItem(m_document, id); // owned by the scene
    m_nodes.insert(id, item);
    addItem(item);
    connect(item, &NodeItem::movedByUser, this, [this, item] { refreshLinksOf(item); });
}

// A drag may begin at the node.
void GraphScene::removeNode(const QString &id)
{
    m_drag->cancel();
    delete m_nodes.take(id);
}

void GraphScene::renameNode(const QString &oldId, const QString &id)
{
    m_drag->cancel(); // it names the actions
    m_nodes.insert(id, m_nodes.take(oldId));
    node(id)->setId(id);
}

// A search, because links are compared by both ends and few operations need it.
LinkItem *GraphScene::link(const LinkRef &ends) const
{
    const auto found = std::find_if(m_links.begin(), m_links.end(),
                                    [&](const LinkItem *item) { return item->link() == ends; });
    return found == m_links.end() ? nullptr : *found;
}

// A new link may need another input pin.
void GraphScene::addLinkItem(const LinkRef &link)
{
    refreshPins(link.from.action);
    refreshPins(link.to.action);
    NodeItem *const from = node(link.from.action);
    NodeItem *const to = node(link.to.action);
    // A link to an action that does not exist is only in the list of problems.
    if (from != nullptr && to != nullptr) {
        auto *const item = new LinkItem(m_document, link, from, to); // owned by the scene
        m_links.append(item);
        addItem(item);
    }
}

// The pin that it needed goes with it.
void GraphScene::removeLinkItem(const LinkRef &link)
{
    LinkItem *const item = this->link(link);
    m_drag->cancel();
    m_marked = m_marked == item ? nullptr : m_marked;
    m_links.removeAll(item);
    delete item;
    refreshPins(link.from.action);
    refreshPins(link.to.action);
}

// Called for each move of the mouse while a node is dragged.
void GraphScene::refreshLinksOf(const NodeItem *node)
{
    for (LinkItem *const item : std::as_const(m_links)) {
        if (item->from() == node || item->to() == node) {
            item->refresh();
        }
    }
}

/// Show the state of an action again; its pins may have moved.
void GraphScene::refreshPins(const QString &id)
{
    if (NodeItem *const item = node(id)) {
        item->refresh();
        refreshLinksOf(item);
    }
}

// What concerns no action is only in the list of problems.
void GraphScene::showProblems()
{
    QHash<QString, QStringList> texts;
    for (const GraphProblem &problem : m_document.problems()) {
        texts[problem.action] << problem.text;
    }
    for (NodeItem *const item : std::as_const(m_nodes)) {
        item->setProblems(texts.value(item->id()).join(u'\n'));
    }
}

// Not itemsBoundingRect(): a link that is being drawn does not count.
QRectF GraphScene::itemsRect() const
{
    QRectF area;
    for (const NodeItem *const item : m_nodes) {
        area |= item->sceneBoundingRect();
    }
    for (const LinkItem *const item : m_links) {
        area |= item->sceneBoundingRect();
    }
    for (const NoteItem *const item : m_notes) {
        area |= item->sceneBoundingRect();
    }
    return area;
}

QPointF GraphScene::snapped(QPointF place) const
{
    const auto nearest = [&](double x) {
        return m_isSnapping ? std::round(x / NodeItem::kGrid) * NodeItem::kGrid : x;
    };
    return {nearest(place.x()), nearest(place.y())};
}

void GraphScene::setSnapping(bool snaps)
{
    m_isSnapping = snaps;
    update();
}

QVector<NodeItem *> GraphScene::orderedNodes() const
{
    QVector<NodeItem *> all = m_nodes.values();
    std::ranges::sort(
        all, {}, [](const NodeItem *item) { return std::tuple(item->x(), item->y(), item->id()); });
    return all;
}

QStringList GraphScene::selectedIds() const
{
    QVector<NodeItem *> selected = orderedNodes();
    selected.removeIf([](const NodeItem *item) { return !item->isSelected(); });
    return mapped<QStringList>(selected, [](const NodeItem *item) { return item->id(); });
}

// Values, because the items vanish with the links.
QVector<LinkRef> GraphScene::selectedLinks() const
{
    QVector<LinkItem *> selected = m_links;
    selected.removeIf([](const LinkItem *item) { return !item->isSelected(); });
    return mapped<QVector<LinkRef>>(selected, [](const LinkItem *item) { return item->link(); });
}

QVector<int> GraphScene::selectedNotes() const
{
    QVector<NoteItem *> selected = m_notes;
    selected.removeIf([](const NoteItem *item) { return !item->isSelected(); });
    return mapped<QVector<int>>(selected, [](const NoteItem *item) { return item->key(); });
}

// Keys act on the focus; after a click both are the same.
QString GraphScene::currentId() const
{
    const auto *const item = qgraphicsitem_cast<NodeItem *>(focusItem());
    const QStringList ids = item != nullptr ? QStringList(item->id()) : selectedIds();
    return ids.size() == 1 ? ids.first() : QString();
}

// Blocked signals: a selection of many nodes is one change for panels.
void GraphScene::select(const QStringList &ids, const QVector<LinkRef> &links,
                        const QVector<int> &notes)
{
    {
        const QSignalBlocker one(this); // one signal for all
        clearSelection();
        for (const QString &id : ids) {
            if (NodeItem *const item = node(id)) {
                item->setSelected(true);
            }
        }
        for (LinkItem *const item : std::as_const(m_links)) {
            item->setSelected(links.contains(item->link()));
        }
        for (NoteItem *const item : std::as_const(m_notes)) {
            item->setSelected(notes.contains(item->key()));
        }
    }
    Q_EMIT selectionChanged();
}

// The focus is for keys and screen readers, the selection for commands.
void GraphScene::setCurrent(const QString &id)
{
    if (NodeItem *const item = node(id)) {
        select({id});
        setFocusItem(item, Qt::OtherFocusReason);
    }
}

// The links of the node that is being dragged follow it, so they are always below it.
LinkItem *GraphScene::linkAt(QPointF place, const NodeItem *except) const
{
    for (QGraphicsItem *const item : items(place)) {
        auto *const link = qgraphicsitem_cast<LinkItem *>(item);
        if (link != nullptr && link->from() != except && link->to() != except) {
            return link;
        }
    }
    return nullptr;
}

// Without a free input the first one says why it cannot take the rows.
PinRef GraphScene::inputFor(QPointF place) const
{
    for (QGraphicsItem *const item : items(place)) {
        const auto *const node = qgraphicsitem_cast<NodeItem *>(item);
        if (node == nullptr) {
            continue;
        }
        int pin = qMax(0, node->inputAt(place));
        while (node->inputAt(place) < 0 && pin + 1 < node->inputs() &&
               !m_document.isFree({node->id(), pin})) {
            ++pin;
        }
        return {node->id(), pin};
    }
    return {};
}

// At most one link is marked.
void GraphScene::markLink(LinkItem *link)
{
    if (m_marked != link) {
        if (m_marked != nullptr) {
            m_marked->setTarget(false);
        }
        m_marked = link;
        if (link != nullptr) {
            link->setTarget(true);
        }
    }
}

/// The node being dragged, if it is alone.
NodeItem *GraphScene::insertable() const
{
    const QList<QGraphicsItem *> selected = selectedItems();
    return selected.size() == 1 ? qgraphicsitem_cast<NodeItem *>(selected.first()) : nullptr;
}

// Pins and ends of links come before nodes: they are smaller.
void GraphScene::mousePressEvent(QGraphicsSceneMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && m_drag->beginAt(event->scenePos())) {
        m_drag->moveTo(event->scenePos());
        event->accept();
        return;
    }
    QGraphicsScene::mousePressEvent(event);
}

// A single node that is dragged over a link can be inserted there.
void GraphScene::mouseMoveEvent(QGraphicsSceneMouseEvent *event)
{
    if (m_drag->isActive()) {
        m_drag->moveTo(event->scenePos());
        return;
    }
    QGraphicsScene::mouseMoveEvent(event);
    const NodeItem *const moved =
        event->buttons().testFlag(Qt::LeftButton) ? insertable() : nullptr;
    if (moved != nullptr && moved == mouseGrabberItem()) {
        LinkItem *const link = linkAt(moved->mapToScene(moved->body().center()), moved);
        const bool canInsert =
            link != nullptr && m_document.canInsertIntoLink(moved->id(), link->link());
        markLink(canInsert ? link : nullptr);
    }
}

// The items have moved already; now the document follows.
void GraphScene::mouseReleaseEvent(QGraphicsSceneMouseEvent *event)
{
    if (m_drag->isActive()) {
        m_drag->dropAt(event->scenePos());
        return;
    }
    QGraphicsScene::mouseReleaseEvent(event);
    if (event->button() == Qt::LeftButton) {
        commitMove(insertable());
    }
}

/// Make the positions of the items one step, together with the insertion into a link.
void GraphScene::commitMove(const NodeItem *dropped)
{
    QMap<QString, QPointF> positions;
    for (const NodeItem *const item : std::as_const(m_nodes)) {
        if (item->pos() != m_document.position(item->id())) {
            positions.insert(item->id(), item->pos());
        }
    }
    QMap<int, QPointF> notes;
    for (const NoteItem *const item : std::as_const(m_notes)) {
        notes.insert(item->key(), item->pos());
    }
    LinkItem *const link = m_marked;
    markLink(nullptr);
    if (link != nullptr && dropped != nullptr) {
        const LinkRef ends = link->link();
        const QString id = dropped->id();
        m_document.undoStack()->beginMacro(tr("Insert “%1” into a link").arg(id));
        m_document.move(positions);
        m_document.insertIntoLink(id, ends);
        m_document.undoStack()->endMacro();
        return;
    }
    // Nodes and notes that were moved together are one step.
    const bool areBoth = !positions.isEmpty() && std::ranges::any_of(m_notes, [](auto *item) {
        return item->isSelected();
    });
    if (areBoth) {
        m_document.undoStack()->beginMacro(tr("Move the selection"));
    }
    m_document.move(positions);
    m_document.moveNotes(notes);
    if (areBoth) {
        m_document.undoStack()->endMacro();
    }
}

// On a node: edit it; on a link: insert an action; on the background: add one.
void GraphScene::mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event)
{
    for (QGraphicsItem *const item : items(event->scenePos())) {
        if (const auto *const node = qgraphicsitem_cast<NodeItem *>(item)) {
            Q_EMIT activated(node->id());
            return;
        }
        if (const auto *const note = qgraphicsitem_cast<NoteItem *>(item)) {
            Q_EMIT noteActivated(note->key());
            return;
        }
    }
    if (event->button() != Qt::LeftButton) {
        return;
    }
    if (const LinkItem *const item = linkAt(event->scenePos())) {
        Q_EMIT insertionWanted(item->link(), event->scenePos());
    } else {
        Q_EMIT actionWanted({}, event->scenePos());
    }
}

void GraphScene::helpEvent(QGraphicsSceneHelpEvent *event)
{
    // While a link is drawn, its own tool tip says why a target is not possible.
    if (!m_drag->isActive()) {
        QGraphicsScene::helpEvent(event);
    }
}

} // namespace corvanta::studio
