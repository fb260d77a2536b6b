// Drawing of links.
#include "studio/canvas/link_drag.h"

#include "studio/canvas/canvas_colors.h"
#include "studio/canvas/graph_scene.h"

#include <QApplication>
#include <QCursor>
#include <QPen>
#include <QToolTip>

#include <algorithm>

namespace corvanta::studio {

namespace {

/// The node whose pins or body are at a place; null if there is none.
NodeItem *nodeAt(const GraphScene &scene, QPointF place)
{
    constexpr double kReach = 12; // pins extend beyond the body
    const QRectF area(place - QPointF(kReach, 2), QSizeF(2 * kReach, 4));
    NodeItem *near = nullptr;
    for (QGraphicsItem *const item : scene.items(area)) {
        auto *const node = qgraphicsitem_cast<NodeItem *>(item);
        if (node != nullptr && node->body().contains(node->mapFromScene(place))) {
            return node;
        }
        near = near == nullptr ? node : near;
    }
    return near;
}

} // namespace

LinkDrag::LinkDrag(GraphScene &scene)
    : m_scene(scene)
{
}

LinkDrag::~LinkDrag() = default;

// A linked input gives up its link: dragging it elsewhere re-routes the link.
bool LinkDrag::beginAt(QPointF place)
{
    if (const NodeItem *const node = nodeAt(m_scene, place)) {
        if (const int output = node->outputAt(place); output >= 0) {
            begin({node->id(), output}, true);
            return true;
        }
        const int input = node->inputAt(place);
        if (input >= 0) {
            const auto links = m_scene.document().linksTo({node->id(), input});
            if (!links.isEmpty()) {
                return beginWithLink(links.first(), true);
            }
            begin({node->id(), input}, false);
            return true;
        }
        return false;
    }
    const LinkItem *const link = m_scene.linkAt(place);
    return link != nullptr && (link->isNearStart(place) || link->isNearEnd(place)) &&
           beginWithLink(link->link(), link->isNearEnd(place));
}

/// Begin with a link; its end, or else its start, gets another pin.
bool LinkDrag::beginWithLink(const LinkRef &link, bool isEndMoved)
{
    begin(isEndMoved ? link.from : link.to, isEndMoved);
    m_rerouted = link;
    if (LinkItem *const item = m_scene.link(link)) {
        item->setOpacity(0.3);
    }
    return true;
}

/// Begin at a pin that stays.
void LinkDrag::begin(const PinRef &fixed, bool isOutput)
{
    cancel();
    m_fixed = fixed;
    m_isOutput = isOutput;
    m_curve = std::make_unique<QGraphicsPathItem>();
    m_curve->setZValue(2);
    m_scene.addItem(m_curve.get());
}

void LinkDrag::beginFrom(const PinRef &output)
{
    begin(output, true);
    offerTargets();
}

void LinkDrag::beginReroute(const LinkRef &link)
{
    beginWithLink(link, true);
    offerTargets();
}

/// Only possible targets are offered, so Tab reaches each of them soon.
void LinkDrag::offerTargets()
{
    for (const NodeItem *const node : m_scene.orderedNodes()) {
        for (int pin = 0; pin < node->inputs(); ++pin) {
            const Target target = judged({node->id(), pin}, true);
            if (target.isPossible && target.link != m_rerouted) {
                m_targets.append({node->id(), pin});
            }
        }
    }
    // Free inputs first: they are what is wanted most.
    std::stable_partition(m_targets.begin(), m_targets.end(),
                          [this](const PinRef &pin) { return !judged(pin, true).replaced; });
    if (m_targets.isEmpty()) {
        const QString id = m_fixed->action;
        cancel();
        Q_EMIT m_scene.message(GraphScene::tr("No other action can get the rows of “%1”.").arg(id));
    } else {
        nextTarget(1);
    }
}

// The message is what a screen reader says.
void LinkDrag::nextTarget(int step)
{
    if (m_targets.isEmpty()) {
        return;
    }
    m_targetIndex = (m_targetIndex + step + m_targets.size()) % m_targets.size();
    const PinRef &pin = m_targets[m_targetIndex];
    const Target target = judged(pin, true);
    drawTo(m_scene.node(pin.action)->inputPosition(pin.pin), target);
    const QString text = GraphScene::tr("Link “%1” to input %2 of “%3”: Enter; another target: Tab")
                             .arg(m_fixed->action, QString::number(pin.pin), pin.action);
    Q_EMIT m_scene.message(target.why.isEmpty() ? text : text + u' ' + target.why);
}

// Enter before a target is chosen has no effect.
void LinkDrag::accept()
{
    if (m_targetIndex >= 0) {
        finish(judged(m_targets[m_targetIndex], true));
    }
}

/// Where the end that stays is.
QPointF LinkDrag::fixedPosition() const
{
    const NodeItem *const node = m_scene.node(m_fixed->action);
    return m_isOutput ? node->outputPosition(m_fixed->pin) : node->inputPosition(m_fixed->pin);
}

/// The pin that a link dropped on the body of a node gets: the first free one.
PinRef LinkDrag::bestPin(const NodeItem &node) const
{
    const int count = m_isOutput ? node.inputs() : node.outputs();
    for (int pin = 0; pin < count; ++pin) {
        if (judged({node.id(), pin}, false).isPossible) {
            return {node.id(), pin};
        }
    }
    return {node.id(), 0};
}

/// The link with a pin as its other end, and whether it is possible; with `isReplacing` it may take
/// the place of the link that the pin has.
LinkDrag::Target LinkDrag::judged(const PinRef &other, bool isReplacing) const
{
    const GraphDocument &document = m_scene.document();
    Target target;
    target.link = m_isOutput ? LinkRef{*m_fixed, other} : LinkRef{other, *m_fixed};
    const auto &[from, to] = *target.link;
    const auto present = document.linksTo(to);
    if (isReplacing && !m_rerouted && present.size() == 1 && present.first() != target.link &&
        document.canLink(from, to, &target.why, &present.first())) {
        target.isPossible = true;
        target.replaced = present.first();
        target.why = GraphScene::tr("It replaces the link from “%1”.").arg(present[0].from.action);
        return target;
    }
    target.isPossible =
        m_rerouted == target.link ||
        document.canLink(from, to, &target.why, m_rerouted ? &*m_rerouted : nullptr);
    return target;
}

// The own node is not a target, so that a click on a pin has no effect.
LinkDrag::Target LinkDrag::targetAt(QPointF place) const
{
    const NodeItem *const node = nodeAt(m_scene, place);
    if (node == nullptr ||
        (node->id() == m_fixed->action && node->body().contains(node->mapFromScene(place)))) {
        return {};
    }
    const int pin = m_isOutput ? node->inputAt(place) : node->outputAt(place);
    // A link is replaced only on its pin: on the body of a node it would be an accident.
    return judged(pin >= 0 ? PinRef{node->id(), pin} : bestPin(*node), pin >= 0);
}

/// Draw the link to a place, in the colour of what would happen.
void LinkDrag::drawTo(QPointF place, const Target &target)
{
    const CanvasColors colors(QApplication::palette());
    const QColor color = !target.link        ? colors.link()
                         : target.isPossible ? colors.good()
                                             : colors.error();
    m_curve->setPen(
        QPen(color, 2.5, target.link && !target.isPossible ? Qt::DashLine : Qt::SolidLine));
    m_curve->setPath(m_isOutput ? LinkItem::curve(fixedPosition(), place)
                                : LinkItem::curve(place, fixedPosition()));
}

// The reason is said once for each target, not for each move.
void LinkDrag::moveTo(QPointF place)
{
    const Target target = targetAt(place);
    drawTo(place, target);
    if (target.why != m_lastWhy) {
        m_lastWhy = target.why;
        QToolTip::showText(QCursor::pos(), target.why);
        Q_EMIT m_scene.message(target.why);
    }
}

// A link that is re-routed into the open stays as it was.
void LinkDrag::dropAt(QPointF place)
{
    const Target target = targetAt(place);
    if (target.link || m_rerouted) {
        finish(target);
        return;
    }
    // In the open: the rows want a new action.
    const PinRef from = *m_fixed;
    const bool isOutput = m_isOutput;
    const bool isFar = (place - fixedPosition()).manhattanLength() > 4 * NodeItem::kPinRadius;
    cancel();
    if (isOutput && isFar) {
        Q_EMIT m_scene.actionWanted(from, place);
    }
}

/// Make the link, or say why it is not possible.
void LinkDrag::finish(const Target &target)
{
    const auto rerouted = target.replaced ? target.replaced : m_rerouted;
    cancel();
    QString why = target.why;
    const bool isDone =
        target.isPossible &&
        (rerouted ? m_scene.document().reroute(*rerouted, *target.link, &why)
                  : m_scene.document().addLink(target.link->from, target.link->to, &why));
    if (!isDone && !why.isEmpty()) {
        Q_EMIT m_scene.message(why);
    }
}

// Also at the end of each drag.
void LinkDrag::cancel()
{
    if (m_rerouted) {
        if (LinkItem *const item = m_scene.link(*m_rerouted)) {
            item->setOpacity(1);
        }
    }
    m_fixed.reset();
    m_rerouted.reset();
    m_curve.reset();
    m_targets.clear();
    m_targetIndex = -1;
    m_lastWhy.clear();
}

} // namespace corvanta::studio
