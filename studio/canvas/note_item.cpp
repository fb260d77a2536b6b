// As wide as a node, and as high as its text.
#include "studio/canvas/note_item.h"

#include "studio/canvas/canvas_colors.h"
#include "studio/canvas/graph_scene.h"

#include <QApplication>
#include <QFontMetricsF>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace corvanta::studio {

namespace {

constexpr double kPadding = 8;
constexpr double kFold = 10; // of the corner
constexpr double kMaxTextHeight = 2000;
constexpr int kTextFlags = Qt::AlignLeft | Qt::AlignTop | Qt::TextWordWrap;

/// A sheet with a folded corner, so that it does not look like an action.
QPolygonF sheet(const QRectF &area)
{
    return {area.topLeft(), area.topRight() - QPointF(kFold, 0),
            area.topRight() + QPointF(0, kFold), area.bottomRight(), area.bottomLeft()};
}

} // namespace

// Below links and nodes, which a note may be about.
NoteItem::NoteItem(const Note &note)
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemIsFocusable | ItemSendsGeometryChanges);
    setZValue(-1);
    setNote(note);
}

void NoteItem::setNote(const Note &note)
{
    prepareGeometryChange();
    m_note = note;
    const QRectF wanted =
        QFontMetricsF(canvasFont(1, false))
            .boundingRect(QRectF(0, 0, NodeItem::kWidth, kMaxTextHeight), kTextFlags, m_note.text);
    m_size = {NodeItem::kWidth + 2 * kPadding, wanted.height() + 2 * kPadding};
    m_isRefreshing = true;
    setPos(note.position);
    m_isRefreshing = false;
    update();
}

QRectF NoteItem::boundingRect() const
{
    return QRectF(QPointF(), m_size).adjusted(-2, -2, 2, 2);
}

QVariant NoteItem::itemChange(GraphicsItemChange change, const QVariant &value)
{
    const auto *const graph = static_cast<const GraphScene *>(scene());
    if (change == ItemPositionChange && !m_isRefreshing && graph != nullptr &&
        !QApplication::keyboardModifiers().testFlag(Qt::AltModifier)) {
        return graph->snapped(value.toPointF());
    }
    return QGraphicsObject::itemChange(change, value);
}

void NoteItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    const CanvasColors colors(widget != nullptr ? widget->palette() : scene()->palette());
    const bool isSelected = option->state.testFlag(QStyle::State_Selected);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(isSelected ? colors.selection() : colors.border(), isSelected ? 2.5 : 1));
    painter->setBrush(colors.node());
    const QRectF area(QPointF(), m_size);
    painter->drawPolygon(sheet(area));
    painter->setPen(colors.text());
    painter->setFont(canvasFont(1, false));
    painter->drawText(area.adjusted(kPadding, kPadding, -kPadding, 0), kTextFlags, m_note.text);
}

} // namespace corvanta::studio
