// A cubic curve that leaves and enters pins horizontally.
#include "studio/canvas/link_item.h"

#include "studio/canvas/canvas_colors.h"

#include <QGraphicsScene>
#include <QLineF>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

namespace corvanta::studio {

namespace {

constexpr double kHitWidth = 12;
constexpr double kEndLength = 30; // from the pin: where an end can be taken
constexpr double kArrow = 7;
constexpr double kLabelWidth = 110;
constexpr double kLabelHeight = 16;
constexpr double kLabelZoom = 0.5;

/// How far a link leaves its pins horizontally. One that leads back needs a wide loop to be seen.
double reachOf(double distance)
{
    return distance > 0 ? qMax(distance / 2, 32.0) : qMin(160.0, 48 - distance / 2);
}

} // namespace

// Below the nodes, which have the Z value 1.
LinkItem::LinkItem(GraphDocument &document, const LinkRef &link, NodeItem *from, NodeItem *to)
    : m_document(document)
    , m_link(link)
    , m_from(from)
    , m_to(to)
{
    setFlags(ItemIsSelectable | ItemIsFocusable);
    refresh();
}

QPainterPath LinkItem::curve(QPointF from, QPointF to)
{
    const double reach = reachOf(to.x() - from.x());
    QPainterPath path(from);
    path.cubicTo(from.x() + reach, from.y(), to.x() - reach, to.y(), to.x(), to.y());
    return path;
}

// Both ends are read from the nodes, which move.
void LinkItem::refresh()
{
    setPath(curve(m_from->outputPosition(m_link.from.pin), m_to->inputPosition(m_link.to.pin)));
}

QString LinkItem::spokenName() const
{
    return tr("Link from “%1” to “%2”").arg(m_link.from.action, m_link.to.action);
}

// Rows are those of the last run; before it there are none to tell.
QString LinkItem::spokenText() const
{
    const QString pins = tr("output %1 to input %2")
                             .arg(QString::number(m_link.from.pin), QString::number(m_link.to.pin));
    const qint64 rows = m_document.runState(m_link.from.action).rows.value(m_link.from.pin, -1);
    return rows < 0 ? pins : tr("%1, %2 rows").arg(pins, rowsText(rows));
}

// Drawn thick and in the colour of success.
void LinkItem::setTarget(bool isTarget)
{
    if (m_isTarget != isTarget) {
        m_isTarget = isTarget;
        update();
    }
}

bool LinkItem::isNearStart(QPointF place) const
{
    return QLineF(place, path().elementAt(0)).length() < kEndLength;
}

bool LinkItem::isNearEnd(QPointF place) const
{
    return QLineF(place, path().currentPosition()).length() < kEndLength;
}

// With room for the number of rows.
QRectF LinkItem::boundingRect() const
{
    return path().controlPointRect().adjusted(-kLabelWidth / 2, -kLabelHeight, kLabelWidth / 2,
                                              kLabelHeight);
}

// Wider than it is drawn, so that it is easy to hit.
QPainterPath LinkItem::shape() const
{
    QPainterPathStroker stroker;
    stroker.setWidth(kHitWidth);
    return stroker.createStroke(path());
}

// The rows are those that the output has sent, the same for each of its links.
void LinkItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    const CanvasColors colors(widget != nullptr ? widget->palette() : scene()->palette());
    const double zoom = option->levelOfDetailFromTransform(painter->worldTransform());
    const bool isSelected = option->state.testFlag(QStyle::State_Selected);
    const bool isRunning = m_document.runState(m_link.from.action).state == NodeState::Running;
    const QColor color = m_isTarget                ? colors.good()
                         : isSelected || isRunning ? colors.selection()
                                                   : colors.link();
    painter->setRenderHint(QPainter::Antialiasing, zoom > kLabelZoom);
    painter->setPen(QPen(color, m_isTarget ? 4 : isSelected ? 3 : 1.8));
    painter->setBrush(Qt::NoBrush);
    painter->drawPath(path());
    const QPointF end = path().currentPosition() - QPointF(NodeItem::kPinRadius, 0);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawPolygon(
        QPolygonF{end, end + QPointF(-kArrow, -kArrow / 2), end + QPointF(-kArrow, kArrow / 2)});
    if (zoom > kLabelZoom) {
        paintRows(painter, colors);
    }
}

/// The number of rows in the middle of the link, on the background, so that lines do not cross it.
void LinkItem::paintRows(QPainter *painter, const CanvasColors &colors) const
{
    const qint64 rows = m_document.runState(m_link.from.action).rows.value(m_link.from.pin, -1);
    if (rows < 0) {
        return;
    }
    const QString text = rowsText(rows);
    painter->setFont(canvasFont(1, false));
    const QPointF middle = path().pointAtPercent(0.5);
    const double width = qMin(kLabelWidth, painter->fontMetrics().horizontalAdvance(text) + 4.0);
    const QRectF box(middle.x() - width / 2, middle.y() - kLabelHeight / 2, width, kLabelHeight);
    painter->fillRect(box, colors.background());
    painter->setPen(colors.text());
    painter->drawText(box, Qt::AlignCenter, text);
}

} // namespace corvanta::studio
