// The keys of the canvas are actions, so that the list of shortcuts shows and changes them. While a
// link is drawn, all keys are those of LinkDrag.
#include "studio/canvas/canvas_view.h"
#include "studio/canvas/link_drag.h"
#include "studio/widgets/local_keys.h"
#include "studio/widgets/part_action.h"

#include <QAction>
#include <QKeyEvent>
#include <QScrollBar>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

// Arrows are four actions each, because a shortcut does not say which of its keys was pressed.
void CanvasView::makeKeys()
{
    const auto add = [this](const ActionSpec &spec) {
        // The field for a new action is a child, too, and uses the keys itself.
        makeAction(this, spec)->setShortcutContext(Qt::WidgetShortcut);
    };
    const ActionSpec specs[] = {
        {u"canvasEdit"_s, tr("Edit"), Qt::Key_Return, tr("Edit the current action or note"),
         [this] { editCurrent(); }},
        {u"canvasAdd"_s, tr("Add Action"), Qt::Key_Space,
         tr("Search an action to add, after the current one or into the selected link"),
         [this] { askAtCurrent(); }},
        {u"canvasLink"_s, tr("Draw Link"), Qt::Key_L,
         tr("Draw a link from the current action, or another end of the selected link"),
         [this] { drawLink(); }},
        {u"canvasNextLink"_s, tr("Next Link"), Qt::Key_K, tr("Go to the next link"),
         [this] { goToNextLink(); }},
        {u"canvasNextNote"_s, tr("Next Note"), Qt::Key_N, tr("Go to the next note"),
         [this] { goToNextNote(); }},
        {u"canvasZoomIn"_s, tr("Zoom In"), Qt::Key_Plus, tr("Show the graph larger"),
         [this] { zoomIn(); }},
        {u"canvasZoomOut"_s, tr("Zoom Out"), Qt::Key_Minus, tr("Show the graph smaller"),
         [this] { zoomOut(); }},
    };
    std::ranges::for_each(specs, add);
    const struct Arrow
    {
        Qt::Key key;
        QPointF way;
        QString name, move, go;
    } arrows[] = {
        {Qt::Key_Left, {-1, 0}, u"Left"_s, tr("Move Left"), tr("Go Left")},
        {Qt::Key_Right, {1, 0}, u"Right"_s, tr("Move Right"), tr("Go Right")},
        {Qt::Key_Up, {0, -1}, u"Up"_s, tr("Move Up"), tr("Go Up")},
        {Qt::Key_Down, {0, 1}, u"Down"_s, tr("Move Down"), tr("Go Down")},
    };
    for (const Arrow &arrow : arrows) {
        add({u"canvasMove"_s + arrow.name, arrow.move, arrow.key,
             tr("Move the selected actions and notes; without any, scroll"),
             [this, way = arrow.way] { moveSelection(way); }});
        add({u"canvasGo"_s + arrow.name, arrow.go, Qt::ALT | arrow.key,
             tr("Go to the nearest action in this direction"),
             [this, way = arrow.way] { goToNeighbour(way); }});
    }
    new LocalKeys(this, [this] { return !m_scene->linkDrag().isActive(); }); // owned by this
}

/// A shortcut would change the graph while a link is drawn in it.
bool CanvasView::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride && m_scene->linkDrag().isActive()) {
        event->accept();
        return true;
    }
    return QGraphicsView::event(event);
}

// All other keys have actions.
void CanvasView::keyPressEvent(QKeyEvent *event)
{
    LinkDrag &drag = m_scene->linkDrag();
    if (!drag.isActive()) {
        return QGraphicsView::keyPressEvent(event);
    }
    switch (event->key()) {
    case Qt::Key_Escape:
        drag.cancel();
        Q_EMIT message({});
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        drag.accept();
        break;
    case Qt::Key_Right:
    case Qt::Key_Down:
        drag.nextTarget(1);
        break;
    case Qt::Key_Left:
    case Qt::Key_Up:
        drag.nextTarget(-1);
        break;
    default:
        break;
    }
}

// A note is current when it has the focus; several may be selected.
void CanvasView::editCurrent()
{
    const auto *const note = qgraphicsitem_cast<NoteItem *>(m_scene->focusItem());
    if (const QString id = m_scene->currentId(); !id.isEmpty()) {
        Q_EMIT activated(id);
    } else if (note != nullptr && note->isSelected()) {
        editNote(note->key());
    }
}

// An action without an output cannot be followed by another one.
void CanvasView::askAtCurrent()
{
    const QString id = m_scene->currentId();
    const QVector<LinkRef> links = m_scene->selectedLinks();
    if (id.isEmpty() && links.size() == 1) {
        const LinkItem *const item = m_scene->link(links.first());
        askForInsertion(links.first(), item->path().pointAtPercent(0.5));
    } else {
        const bool hasOutput = !id.isEmpty() && m_document.outputCount(id) > 0;
        askForAction(hasOutput ? PinRef{id, 0} : PinRef(), freePosition());
    }
}

// From the first output; arrows choose the target, not another output.
void CanvasView::drawLink()
{
    const QString id = m_scene->currentId();
    const QVector<LinkRef> links = m_scene->selectedLinks();
    if (!id.isEmpty() && m_document.outputCount(id) > 0) {
        m_scene->linkDrag().beginFrom({id, 0});
    } else if (!id.isEmpty()) {
        Q_EMIT message(tr("“%1” has no output.").arg(id));
    } else if (links.size() == 1) {
        m_scene->linkDrag().beginReroute(links.first());
    }
}

/// Move the selected nodes by a step of the grid; with several keys this is one step for undo.
void CanvasView::moveSelection(QPointF way)
{
    QMap<QString, QPointF> positions;
    for (const QString &id : m_scene->selectedIds()) {
        positions.insert(id, m_document.position(id) + way * NodeItem::kGrid);
    }
    QMap<int, QPointF> notes;
    for (const NoteItem *const note : m_scene->notes()) {
        if (note->isSelected()) {
            notes.insert(note->key(), note->pos() + way * NodeItem::kGrid);
        }
    }
    m_document.move(positions, m_moveSeries);
    m_document.moveNotes(notes, m_moveSeries);
    if (positions.isEmpty() && notes.isEmpty()) {
        QScrollBar *const bar = way.x() != 0 ? horizontalScrollBar() : verticalScrollBar();
        bar->setValue(bar->value() + qRound(way.x() + way.y()) * bar->singleStep());
    }
}

/// Make the nearest node in the direction of an arrow current, a linked one first.
void CanvasView::goToNeighbour(QPointF direction)
{
    const NodeItem *const current = m_scene->node(m_scene->currentId());
    if (current == nullptr) {
        focusNextPrevChild(true);
        return;
    }
    const NodeItem *best = nullptr;
    double bestCost = 0;
    for (const NodeItem *const node : m_scene->orderedNodes()) {
        const QPointF way = node->pos() - current->pos();
        const double along = QPointF::dotProduct(way, direction);
        const double across = qAbs(way.x() * direction.y()) + qAbs(way.y() * direction.x());
        const double cost = along + 2 * across;
        if (node != current && along > 0 && (best == nullptr || cost < bestCost)) {
            best = node;
            bestCost = cost;
        }
    }
    if (best != nullptr) {
        showAction(best->id());
    }
}

/// Select the item after the selected one, in the order of the file.
template <class Item>
void CanvasView::goToNext(const QVector<Item *> &items, void (CanvasView::*show)(Item *))
{
    if (items.isEmpty()) {
        return;
    }
    const auto selected = std::ranges::find_if(items, &Item::isSelected);
    const bool isLast = selected == items.end() || selected + 1 == items.end();
    (this->*show)(isLast ? items.first() : *(selected + 1));
}

// In the order of the file, as in the outline.
void CanvasView::goToNextLink()
{
    goToNext(m_scene->links(), &CanvasView::showLink);
}

// In the order of the file, too.
void CanvasView::goToNextNote()
{
    goToNext(m_scene->notes(), &CanvasView::showNote);
}

} // namespace corvanta::studio
