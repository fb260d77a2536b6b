// Draws an action. Far away only its shape and colours are drawn.
#include "studio/canvas/node_item.h"

#include "corvanta/edit/shown_text.h"
#include "studio/canvas/canvas_colors.h"
#include "studio/canvas/graph_scene.h"

#include <QApplication>
#include <QCursor>
#include <QFontMetricsF>
#include <QGraphicsSceneHoverEvent>
#include <QLocale>
#include <QPainter>
#include <QStyleOptionGraphicsItem>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr double kHeight = 64;
constexpr double kPinDistance = 16;
constexpr double kCornerRadius = 6;
constexpr double kIconSize = 32;
constexpr double kMargin = 10;
constexpr double kCommentHeight = 34;
constexpr double kBadgeSize = 16;
constexpr double kTextZoom = 0.35; // texts are not legible below

/// For screen readers; empty before a run.
QString stateText(NodeState state)
{
    switch (state) {
    case NodeState::Idle:
        return {};
    case NodeState::Waiting:
        return NodeItem::tr("waiting");
    case NodeState::Running:
        return NodeItem::tr("running");
    case NodeState::Done:
        return NodeItem::tr("done");
    case NodeState::Warning:
        return NodeItem::tr("done with warnings");
    case NodeState::Failed:
        return NodeItem::tr("failed");
    case NodeState::Stopped:
        return NodeItem::tr("stopped");
    }
    return {};
}

/// One line of text, cut in the middle if it is too long: names often differ at both ends.
void drawElided(QPainter *painter, const QRectF &box, const QString &text, const QFont &font,
                const QColor &color)
{
    painter->setFont(font);
    painter->setPen(color);
    painter->drawText(box, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                      QFontMetricsF(font).elidedText(text, Qt::ElideMiddle, box.width()));
}

/// The badge of a state. States differ in shape too, not only in colour.
void drawBadge(QPainter *painter, NodeState state, const QRectF &box, const QColor &color,
               const QColor &mark)
{
    const QPointF c = box.center();
    const double r = box.width() / 2;
    painter->setPen(QPen(color, 1.5));
    painter->setBrush(state == NodeState::Waiting ? QBrush(mark) : QBrush(color));
    if (state == NodeState::Stopped) {
        painter->drawRect(box.adjusted(3, 3, -3, -3));
    } else if (state == NodeState::Running) {
        painter->drawPolygon(QPolygonF{c + QPointF(-r / 2, -r * 0.7), c + QPointF(r * 0.8, 0),
                                       c + QPointF(-r / 2, r * 0.7)});
    } else if (state == NodeState::Warning) {
        painter->drawPolygon(
            QPolygonF{c + QPointF(0, -r), c + QPointF(r, r * 0.8), c + QPointF(-r, r * 0.8)});
    } else {
        painter->drawEllipse(box.adjusted(1, 1, -1, -1));
    }
    painter->setPen(QPen(mark, 2, Qt::SolidLine, Qt::RoundCap));
    if (state == NodeState::Done) {
        painter->drawPolyline(QPolygonF{c + QPointF(-r * 0.4, 0), c + QPointF(-r * 0.1, r * 0.35),
                                        c + QPointF(r * 0.45, -r * 0.35)});
    } else if (state == NodeState::Failed) {
        const double d = r * 0.35;
        painter->drawLine(c + QPointF(-d, -d), c + QPointF(d, d));
        painter->drawLine(c + QPointF(-d, d), c + QPointF(d, -d));
    } else if (state == NodeState::Warning) {
        painter->drawLine(c + QPointF(0, -r * 0.4), c + QPointF(0, r * 0.15));
        painter->drawPoint(c + QPointF(0, r * 0.5));
    }
}

} // namespace

// Two lines of text are as high as the icon.
double canvasScale()
{
    constexpr double kLineHeight = kIconSize / 2 + 2;
    return qMax(1.0, QFontMetricsF(QApplication::font()).height() / kLineHeight);
}

QFont canvasFont(double factor, bool isBold)
{
    QFont font = QApplication::font();
    font.setPointSizeF(font.pointSizeF() * factor / canvasScale());
    font.setBold(isBold);
    return font;
}

QString rowsText(qint64 rows)
{
    return QLocale().toString(rows);
}

// Above the links.
NodeItem::NodeItem(GraphDocument &document, const QString &id)
    : m_document(document)
    , m_id(id)
{
    setFlags(ItemIsMovable | ItemIsSelectable | ItemIsFocusable | ItemSendsGeometryChanges);
    setAcceptHoverEvents(true);
    setZValue(1);
    refresh();
}

void NodeItem::setId(const QString &id)
{
    m_id = id;
    refresh();
}

// All in one call: most edits change one property, and reading all of them costs little.
void NodeItem::refresh()
{
    prepareGeometryChange();
    m_type = m_document.type(m_id);
    m_comment = m_document.comment(m_id);
    m_inputs = m_document.inputCount(m_id);
    m_outputs = m_document.outputCount(m_id);
    m_isKnown = m_document.registry().prototype(m_type) != nullptr;
    m_size = {kWidth, qMax(kHeight, kPinDistance * (qMax(m_inputs, m_outputs) + 1))};
    m_isRefreshing = true;
    setPos(m_document.position(m_id));
    m_isRefreshing = false;
    setToolTip(tip());
    update();
}

/// All texts, which may be cut in the node.
QString NodeItem::tip() const
{
    QString text = m_id + u'\n' + (m_isKnown ? m_type : tr("%1 (unknown action)").arg(m_type));
    text += m_comment.isEmpty() ? QString() : u"\n\n"_s + m_comment;
    text += m_problems.isEmpty() ? QString() : u"\n\n"_s + m_problems;
    return plainToolTip(text);
}

// Called for all nodes after each check.
void NodeItem::setProblems(const QString &problems)
{
    if (m_problems != problems) {
        m_problems = problems;
        refresh();
    }
}

// In the scene, for links.
QPointF NodeItem::inputPosition(int pin) const
{
    return mapToScene(0, pinY(pin, m_inputs));
}

QPointF NodeItem::outputPosition(int pin) const
{
    return mapToScene(kWidth, pinY(pin, m_outputs));
}

/// Pins are in the middle of their side.
double NodeItem::pinY(int pin, int count) const
{
    return m_size.height() / 2 + (pin - (qMax(count, 1) - 1) / 2.0) * kPinDistance;
}

// A pin is hit more easily than it is drawn.
int NodeItem::pinAt(QPointF place, bool isInput) const
{
    // The whole height between the pins; the outside more than the inside, where the node is moved.
    const QPointF at = mapFromScene(place);
    const double outside = isInput ? -at.x() : at.x() - kWidth;
    const int count = isInput ? m_inputs : m_outputs;
    const double pin = (at.y() - pinY(0, count)) / kPinDistance;
    const int nearest = qRound(pin);
    const bool isNear = outside > -8 && outside < 12 && nearest >= 0 && nearest < count;
    return isNear ? nearest : -1;
}

// What a picture shows at once: where the rows come from and go to.
QString NodeItem::spokenText() const
{
    QStringList parts{m_id, m_type, stateText(m_document.runState(m_id).state)};
    for (int pin = 0; pin < m_inputs; ++pin) {
        for (const LinkRef &link : m_document.linksTo({m_id, pin})) {
            parts << tr("gets rows from %1").arg(link.from.action);
        }
    }
    for (int pin = 0; pin < m_outputs; ++pin) {
        for (const LinkRef &link : m_document.linksFrom({m_id, pin})) {
            parts << tr("sends rows to %1").arg(link.to.action);
        }
    }
    parts << m_comment << m_problems;
    parts.removeAll(QString());
    return parts.join(", "_L1);
}

// The cursor shows where a drag begins a link.
void NodeItem::hoverMoveEvent(QGraphicsSceneHoverEvent *event)
{
    const QPointF place = event->scenePos();
    const bool isPin = inputAt(place) >= 0 || outputAt(place) >= 0;
    setCursor(isPin ? Qt::CrossCursor : Qt::ArrowCursor);
}

// With the pins, the focus and the comment below.
QRectF NodeItem::boundingRect() const
{
    constexpr double kOutside = kPinRadius + 4;
    const double below = m_comment.isEmpty() ? kOutside : kCommentHeight + kOutside;
    return body().adjusted(-kOutside, -kOutside, kOutside, below);
}

// Without the comment, which does not catch the mouse.
QPainterPath NodeItem::shape() const
{
    QPainterPath path;
    path.addRect(body().adjusted(-kPinRadius, 0, kPinRadius, 0));
    return path;
}

// Alt moves without the grid. Positions from the document are never changed.
QVariant NodeItem::itemChange(GraphicsItemChange change, const QVariant &value)
{
    const auto *const graph = static_cast<const GraphScene *>(scene());
    if (change == ItemPositionChange && !m_isRefreshing && graph != nullptr &&
        !QApplication::keyboardModifiers().testFlag(Qt::AltModifier)) {
        return graph->snapped(value.toPointF());
    }
    if (change == ItemPositionHasChanged) {
        Q_EMIT movedByUser();
    }
    return QGraphicsObject::itemChange(change, value);
}

// Graphs of hundreds of nodes are seen from far away: then texts are left out.
void NodeItem::paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget)
{
    const CanvasColors colors(widget != nullptr ? widget->palette() : scene()->palette());
    const double zoom = option->levelOfDetailFromTransform(painter->worldTransform());
    painter->setRenderHint(QPainter::Antialiasing, zoom > kTextZoom);
    paintBody(painter, colors, option->state.testFlag(QStyle::State_Selected));
    if (zoom > kTextZoom) {
        paintPins(painter, colors);
        paintTexts(painter, colors);
    }
    paintState(painter, colors);
}

// The border shows the state, and the selection above it.
void NodeItem::paintBody(QPainter *painter, const CanvasColors &colors, bool isSelected) const
{
    const RunState &state = m_document.runState(m_id);
    const bool isPlain = state.state == NodeState::Idle;
    QPen pen(isSelected ? colors.selection() : colors.of(state.state), isSelected ? 2.5
                                                                       : isPlain  ? 1
                                                                                  : 2);
    pen.setStyle(m_isKnown ? Qt::SolidLine : Qt::DashLine);
    painter->setPen(pen);
    painter->setBrush(colors.node());
    painter->drawRoundedRect(body(), kCornerRadius, kCornerRadius);
    if (hasFocus() && !isSelected) {
        painter->setPen(QPen(colors.selection(), 1, Qt::DotLine));
        painter->setBrush(Qt::NoBrush);
        painter->drawRoundedRect(body().adjusted(-3, -3, 3, 3), kCornerRadius, kCornerRadius);
    }
    if (state.state == NodeState::Running && state.fraction >= 0) {
        const QRectF bar(kMargin, m_size.height() - 6, kWidth - 2 * kMargin, 3);
        painter->fillRect(bar, colors.grid());
        painter->fillRect(QRectF(bar.topLeft(), QSizeF(bar.width() * qMin(1.0, state.fraction), 3)),
                          colors.of(NodeState::Running));
    }
}

// Both lines are next to the icon; the badge limits the first one.
void NodeItem::paintTexts(QPainter *painter, const CanvasColors &colors) const
{
    const double top = m_size.height() / 2 - kIconSize / 2;
    const double left = 2 * kMargin + kIconSize - 2;
    paintIcon(painter, {kMargin, top, kIconSize, kIconSize});
    const QRectF name(left, top - 2, kWidth - left - kBadgeSize - 4, kIconSize / 2 + 2);
    drawElided(painter, name, m_id, canvasFont(1, true), colors.text());
    const QRectF second = name.translated(0, name.height()).adjusted(0, 0, kBadgeSize, 0);
    drawElided(painter, second, m_isKnown ? m_type : tr("unknown: %1").arg(m_type),
               canvasFont(0.85, false), m_isKnown ? colors.faintText() : colors.error());
    if (!m_comment.isEmpty()) {
        paintComment(painter, colors);
    }
}

/// The icon of the type; nothing for an unknown one.
void NodeItem::paintIcon(QPainter *painter, const QRectF &box) const
{
    ActionItem *const prototype = m_document.registry().prototype(m_type);
    const QPixmap *const icon = prototype == nullptr ? nullptr : prototype->getIcon(1);
    if (icon != nullptr && !icon->isNull()) {
        painter->setRenderHint(QPainter::SmoothPixmapTransform);
        painter->drawPixmap(box, *icon, icon->rect());
    }
}

/// Two lines below the node; the tool tip has all of it.
void NodeItem::paintComment(QPainter *painter, const CanvasColors &colors) const
{
    const QRectF box(0, m_size.height() + 3, kWidth, kCommentHeight);
    painter->setFont(canvasFont(0.85, false));
    painter->setPen(colors.faintText());
    painter->setClipRect(box);
    painter->drawText(box, Qt::AlignHCenter | Qt::AlignTop | Qt::TextWordWrap, m_comment);
    painter->setClipping(false);
}

// Inputs are hollow, outputs are filled.
void NodeItem::paintPins(QPainter *painter, const CanvasColors &colors) const
{
    painter->setPen(QPen(colors.border(), 1.5));
    painter->setBrush(colors.background());
    for (int pin = 0; pin < m_inputs; ++pin) {
        painter->drawEllipse(QPointF(0, pinY(pin, m_inputs)), kPinRadius, kPinRadius);
    }
    painter->setBrush(colors.border());
    for (int pin = 0; pin < m_outputs; ++pin) {
        painter->drawEllipse(QPointF(kWidth, pinY(pin, m_outputs)), kPinRadius, kPinRadius);
    }
}

// In the corner, where it covers no pin.
void NodeItem::paintState(QPainter *painter, const CanvasColors &colors) const
{
    NodeState state = m_document.runState(m_id).state;
    // Before a run the badge says whether the action can run.
    state = state == NodeState::Idle && !m_problems.isEmpty() ? NodeState::Warning : state;
    if (state != NodeState::Idle) {
        const QRectF box(kWidth - kBadgeSize - 4, 4, kBadgeSize, kBadgeSize);
        drawBadge(painter, state, box, colors.of(state), colors.node());
    }
}

} // namespace corvanta::studio
