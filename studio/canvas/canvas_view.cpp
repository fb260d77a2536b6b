// Zoom, wheel and focus. Keys are in canvas_keys.cpp; what the mouse does to nodes and links is in
// GraphScene and LinkDrag.
#include "studio/canvas/canvas_view.h"

#include "studio/canvas/canvas_access.h"
#include "studio/canvas/canvas_colors.h"
#include "studio/canvas/export_graph.h"
#include "studio/canvas/link_drag.h"
#include "studio/canvas/overview.h"
#include "studio/canvas/quick_add.h"
#include "studio/document/layered_layout.h"

#include <QApplication>
#include <QInputDialog>
#include <QMouseEvent>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QtMath>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr double kMinZoom = 0.05;
constexpr double kMaxZoom = 4;
constexpr double kSceneMargin = 2000; // to drag nodes away from the others
constexpr int kOverviewMargin = 10;

/// So near that the actions, with the space around them, would overlap.
bool isNear(QPointF one, QPointF other)
{
    const QPointF distance = one - other;
    return qAbs(distance.x()) < kLayerStep.width() && qAbs(distance.y()) < kLayerStep.height();
}

} // namespace

// The scene does the work with the mouse; its signals are those of the view.
CanvasView::CanvasView(GraphDocument &document, QWidget *parent)
    : QGraphicsView(parent)
    , m_document(document)
    , m_scene(new GraphScene(document, this))
    , m_overview(new Overview(*this))
    , m_quickAdd(new QuickAdd(document.registry(), this))
    , m_scale(canvasScale())
{
    installCanvasAccess();
    setScene(m_scene);
    setObjectName(u"canvas"_s);
    setAccessibleName(tr("Graph"));
    setAccessibleDescription(tr("Tab goes from action to action, arrows move them, Alt+arrows "
                                "follow links, L draws a link, K goes from link to link, N from "
                                "note to note."));
    setDragMode(RubberBandDrag);
    setAcceptDrops(true);
    setFocusPolicy(Qt::StrongFocus);
    setTransformationAnchor(AnchorUnderMouse);
    setViewportUpdateMode(SmartViewportUpdate);
    setFrameShape(NoFrame);
    connect(m_scene, &GraphScene::selectionMoved, this, [this] {
        --m_moveSeries;
        reportFocus(this);
        Q_EMIT selectionChanged();
    });
    connect(m_scene, &GraphScene::message, this, &CanvasView::message);
    connect(m_scene, &GraphScene::activated, this, &CanvasView::activated);
    connect(m_scene, &GraphScene::actionWanted, this, &CanvasView::askForAction);
    connect(m_scene, &GraphScene::noteActivated, this, &CanvasView::editNote);
    connect(m_scene, &GraphScene::insertionWanted, this, &CanvasView::askForInsertion);
    for (const auto signal : {&GraphDocument::actionAdded, &GraphDocument::moved}) {
        connect(&document, signal, this, &CanvasView::growScene);
    }
    connect(&document, &GraphDocument::fillFailed, this,
            [this](const QString &, const QString &reason) { Q_EMIT message(reason); });
    makeKeys();
    growScene();
    zoomFit();
}

CanvasView::~CanvasView() = default;

QString CanvasView::actionMimeType()
{
    return u"application/x-corvanta-action"_s;
}

// The focus moves too, so that keys and screen readers follow.
void CanvasView::showAction(const QString &id)
{
    if (NodeItem *const node = m_scene->node(id)) {
        m_scene->setCurrent(id);
        ensureVisible(node, kOverviewMargin, kOverviewMargin);
    }
}

// Downwards from the middle, where the user looks.
QPointF CanvasView::freePosition() const
{
    const QPointF center = mapToScene(viewport()->rect().center());
    QPointF place = m_scene->snapped(center - NodeItem::kCenter);
    const auto isTaken = [&](const NodePtr &node) { return isNear(node->position, place); };
    while (std::ranges::any_of(m_document.content().nodes, isTaken)) {
        place.ry() += NodeItem::kGrid * 2;
    }
    return place;
}

// Below the smallest zoom nothing can be recognised.
void CanvasView::zoomBy(double factor)
{
    const double change = qBound(kMinZoom, zoom() * factor, kMaxZoom) / zoom();
    scale(change, change);
}

// About the middle of the view, where nothing moves away.
void CanvasView::zoomReset()
{
    setTransform(QTransform::fromScale(m_scale, m_scale));
}

// Graphs that fit are not enlarged: all graphs have nodes of one size then.
void CanvasView::zoomFit()
{
    constexpr double kMargin = 40;
    zoomReset();
    const QRectF graph = m_scene->itemsRect().adjusted(-kMargin, -kMargin, kMargin, kMargin);
    const QSizeF size = graph.size() * m_scale;
    if (size.width() > viewport()->width() || size.height() > viewport()->height()) {
        fitInView(graph, Qt::KeepAspectRatio);
    } else {
        centerOn(graph.center());
    }
}

/// The scene is larger than the graph, so that there is room around it.
void CanvasView::growScene()
{
    const QRectF needed =
        m_scene->itemsRect().adjusted(-kSceneMargin, -kSceneMargin, kSceneMargin, kSceneMargin);
    m_scene->setSceneRect(m_scene->sceneRect().united(needed));
}

// Its place depends on the scroll bars, which may have come or gone.
void CanvasView::setOverviewShown(bool isShown)
{
    m_overview->setVisible(isShown);
    placeOverview();
}

// Not what is visible, but all of it.
GraphDocument::FileResult<void> CanvasView::exportTo(const QString &file)
{
    return exportGraph(*m_scene, file);
}

// All of the selection is one undo step.
void CanvasView::removeSelection()
{
    m_document.remove(m_scene->selectedIds(), m_scene->selectedLinks(), m_scene->selectedNotes());
}

/// The text of a note, edited by the user; nothing if it is cancelled.
std::optional<QString> CanvasView::askForNote(const QString &text)
{
    QInputDialog dialog(this);
    dialog.setOption(QInputDialog::UsePlainTextEditForTextInput);
    dialog.setWindowTitle(tr("Note"));
    dialog.setLabelText(tr("Text:"));
    dialog.setTextValue(text);
    dialog.adjustSize(); // makes the text field
    // By keys the buttons could not be reached.
    dialog.findChild<QPlainTextEdit *>()->setTabChangesFocus(true);
    return dialog.exec() == QDialog::Accepted ? std::optional(dialog.textValue()) : std::nullopt;
}

// Where a new action would be, too.
void CanvasView::addNote()
{
    const QPointF place = freePosition();
    const auto text = askForNote({});
    if (text && !text->isEmpty()) {
        m_document.addNote(place, *text);
        showNote(m_scene->notes().last());
    }
}

void CanvasView::editNote(int key)
{
    if (const auto text = askForNote(m_document.noteText(key))) {
        m_document.setNoteText(key, *text);
    }
}

void CanvasView::showNote(NoteItem *note)
{
    m_scene->clearSelection();
    note->setSelected(true);
    m_scene->setFocusItem(note);
    ensureVisible(note);
    Q_EMIT message(note->text());
}

// The message is for those who do not see which link it is.
void CanvasView::showLink(LinkItem *link)
{
    m_scene->clearSelection();
    link->setSelected(true);
    m_scene->setFocusItem(link);
    ensureVisible(link);
    Q_EMIT message(link->spokenName());
}

/// Tab goes through the nodes, and leaves the canvas after the last one.
bool CanvasView::focusNextPrevChild(bool next)
{
    if (m_scene->linkDrag().isActive()) {
        m_scene->linkDrag().nextTarget(next ? 1 : -1);
        return true;
    }
    const QVector<NodeItem *> nodes = m_scene->orderedNodes();
    const qsizetype now = nodes.indexOf(m_scene->node(m_scene->currentId()));
    const qsizetype wanted = now < 0 ? (next ? 0 : nodes.size() - 1) : now + (next ? 1 : -1);
    if (wanted < 0 || wanted >= nodes.size()) {
        m_scene->clearSelection();
        m_scene->clearFocus();
        return QGraphicsView::focusNextPrevChild(next);
    }
    showAction(nodes[wanted]->id());
    return true;
}

// Half steps of fine wheels zoom by half as much.
void CanvasView::wheelEvent(QWheelEvent *event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QGraphicsView::wheelEvent(event);
        return;
    }
    constexpr double kStep = 120; // of a wheel with notches
    zoomBy(std::pow(kZoomStep, event->angleDelta().y() / kStep));
    event->accept();
}

// The middle button moves the view, whatever is below it.
void CanvasView::mousePressEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton) {
        m_isPanning = true;
        m_panStart = event->pos();
        viewport()->setCursor(Qt::ClosedHandCursor);
        return;
    }
    QGraphicsView::mousePressEvent(event);
}

// The scroll bars move by as much as the mouse, against its direction.
void CanvasView::mouseMoveEvent(QMouseEvent *event)
{
    if (m_isPanning) {
        const QPoint way = event->pos() - m_panStart;
        m_panStart = event->pos();
        horizontalScrollBar()->setValue(horizontalScrollBar()->value() - way.x());
        verticalScrollBar()->setValue(verticalScrollBar()->value() - way.y());
        return;
    }
    QGraphicsView::mouseMoveEvent(event);
}

// The other buttons do their work in the scene.
void CanvasView::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::MiddleButton && m_isPanning) {
        m_isPanning = false;
        viewport()->unsetCursor();
        return;
    }
    QGraphicsView::mouseReleaseEvent(event);
}

/// Show the search field at a place of the scene.
void CanvasView::askForAction(const PinRef &from, QPointF place)
{
    const QPoint at = viewport()->mapToGlobal(mapFromScene(place));
    m_quickAdd->ask(at, !from.action.isEmpty(),
                    [this, from, place](const QString &type) { addAsked(type, from, place); });
}

/// The same for an action in the middle of a link.
void CanvasView::askForInsertion(const LinkRef &link, QPointF place)
{
    m_quickAdd->ask(viewport()->mapToGlobal(mapFromScene(place)), true,
                    [this, link](const QString &type) {
                        QString why;
                        const QString id = m_document.addActionIntoLink(type, link, &why);
                        id.isEmpty() ? Q_EMIT message(why) : showAction(id);
                    });
}

/// Add the action, and link it if it was asked for from an output.
void CanvasView::addAsked(const QString &type, const PinRef &from, QPointF place)
{
    QUndoStack *const stack = m_document.undoStack();
    stack->beginMacro(tr("Add %1").arg(type));
    const QString id = m_document.addAction(type, m_scene->snapped(place));
    QString why;
    if (!from.action.isEmpty() && !m_document.addLink(from, {id, 0}, &why)) {
        Q_EMIT message(why);
    }
    stack->endMacro();
    showAction(id);
}

// The grid is drawn while nodes keep to it, but not so far away that it would fill the view.
void CanvasView::drawBackground(QPainter *painter, const QRectF &area)
{
    const CanvasColors colors(palette());
    painter->fillRect(area, colors.background());
    constexpr double kStep = NodeItem::kGrid * 4;
    constexpr double kGridZoom = 0.4;
    if (zoom() < kGridZoom || !m_scene->isSnapping()) {
        return;
    }
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(QPen(colors.grid(), 0));
    for (int i = qFloor(area.left() / kStep); i * kStep < area.right(); ++i) {
        painter->drawLine(QPointF(i * kStep, area.top()), QPointF(i * kStep, area.bottom()));
    }
    for (int i = qFloor(area.top() / kStep); i * kStep < area.bottom(); ++i) {
        painter->drawLine(QPointF(area.left(), i * kStep), QPointF(area.right(), i * kStep));
    }
}

// What is visible in the overview changes too.
void CanvasView::resizeEvent(QResizeEvent *event)
{
    QGraphicsView::resizeEvent(event);
    placeOverview();
}

// Colours and fonts are read while drawing.
void CanvasView::changeEvent(QEvent *event)
{
    QGraphicsView::changeEvent(event);
    if (event->type() == QEvent::FontChange) {
        const double change = canvasScale() / m_scale;
        scale(change, change);
        m_scale *= change;
    }
    if (event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange) {
        m_scene->update();
    }
}

/// Keep the overview in the lower right corner.
void CanvasView::placeOverview()
{
    QRect place(QPoint(), m_overview->sizeHint());
    place.moveBottomRight(viewport()->geometry().bottomRight() -
                          QPoint(kOverviewMargin, kOverviewMargin));
    m_overview->setGeometry(place);
}

} // namespace corvanta::studio
