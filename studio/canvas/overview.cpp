// Draws a rectangle for each node, which is faster than drawing the items.
#include "studio/canvas/overview.h"

#include "studio/canvas/canvas_colors.h"
#include "studio/canvas/canvas_view.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPen>
#include <QScrollBar>

namespace corvanta::studio {

// Every change of the scene is a reason to draw, so they are collected.
Overview::Overview(CanvasView &view)
    : QWidget(&view)
    , m_view(view)
{
    constexpr int kDelayMs = 40;
    setObjectName(QStringLiteral("overview"));
    setAccessibleName(tr("Overview"));
    setAccessibleDescription(tr("The whole graph; a click shows that part."));
    setCursor(Qt::PointingHandCursor);
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelayMs);
    connect(&m_timer, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    const auto redraw = [this] { m_timer.start(); };
    for (const QScrollBar *const bar : {view.horizontalScrollBar(), view.verticalScrollBar()}) {
        connect(bar, &QScrollBar::valueChanged, this, redraw);
        connect(bar, &QScrollBar::rangeChanged, this, redraw);
    }
    hide();
}

// The scene collects the areas of its changes only for those who are connected.
void Overview::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_changes =
        connect(&m_view.graphScene(), &QGraphicsScene::changed, this, [this] { m_timer.start(); });
}

void Overview::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    disconnect(m_changes);
}

// The whole graph, in the middle.
QTransform Overview::mapping() const
{
    constexpr double kMargin = 60;
    const QRectF graph =
        m_view.graphScene().itemsRect().adjusted(-kMargin, -kMargin, kMargin, kMargin);
    const double factor = qMin(width() / graph.width(), height() / graph.height());
    QTransform transform;
    transform.translate(width() / 2.0, height() / 2.0);
    transform.scale(factor, factor);
    transform.translate(-graph.center().x(), -graph.center().y());
    return transform;
}

// The frame is the part of the scene that the view shows.
void Overview::paintEvent(QPaintEvent *)
{
    const CanvasColors colors(palette());
    QPainter painter(this);
    painter.fillRect(rect(), colors.node());
    painter.setTransform(mapping());
    for (const NodeItem *const node : m_view.graphScene().orderedNodes()) {
        const RunState &state = m_view.document().runState(node->id());
        const bool isIdle = state.state == NodeState::Idle;
        painter.fillRect(node->body().translated(node->pos()), node->isSelected()
                                                                   ? colors.selection()
                                                               : isIdle ? colors.link()
                                                                        : colors.of(state.state));
    }
    QPen pen(colors.selection(), 2);
    pen.setCosmetic(true);
    painter.setPen(pen);
    painter.drawRect(m_view.mapToScene(m_view.viewport()->rect()).boundingRect());
    painter.resetTransform();
    painter.setPen(colors.border());
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
}

// Also while the button is held: the view follows the mouse.
void Overview::goTo(const QMouseEvent *event)
{
    if (event->buttons().testFlag(Qt::LeftButton)) {
        m_view.centerOn(mapping().inverted().map(event->position()));
    }
}

} // namespace corvanta::studio
