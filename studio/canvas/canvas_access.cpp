// Qt knows only widgets; items of a scene need interfaces of their own.
#include "studio/canvas/canvas_access.h"

#include "studio/canvas/canvas_view.h"

#include <QAccessible>
#include <QAccessibleWidget>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The view that shows the scene of a node; null if there is none.
CanvasView *viewOf(const NodeItem *node)
{
    const auto views = node->scene() == nullptr ? QList<QGraphicsView *>() : node->scene()->views();
    return views.isEmpty() ? nullptr : qobject_cast<CanvasView *>(views.first());
}

/// A node as an item of a list, which most screen readers announce best.
class NodeAccess final : public QAccessibleObject, public QAccessibleActionInterface
{
public:
    explicit NodeAccess(NodeItem *node)
        : QAccessibleObject(node)
    {
    }

    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(viewOf(node()));
    }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    /// What the user can do with the node, and what is done.
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.focusable = true;
        state.selectable = true;
        state.focused = node()->scene() != nullptr && node()->scene()->focusItem() == node();
        state.selected = node()->isSelected();
        return state;
    }

    /// The name alone while the user moves, the description on request.
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name          ? node()->id()
               : kind == QAccessible::Description ? node()->spokenText()
                                                  : QString();
    }

    /// On the screen, for magnifiers that follow the focus.
    QRect rect() const override
    {
        const CanvasView *const view = viewOf(node());
        if (view == nullptr) {
            return {};
        }
        const QRect area = view->mapFromScene(node()->sceneBoundingRect()).boundingRect();
        return {view->viewport()->mapToGlobal(area.topLeft()), area.size()};
    }

    /// Qt asks for each further interface in this way.
    void *interface_cast(QAccessible::InterfaceType kind) override
    {
        return kind == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    /// Pressing a node is the same as Enter.
    void doAction(const QString &name) override
    {
        if (CanvasView *const view = viewOf(node())) {
            view->showAction(node()->id());
            if (name == pressAction()) {
                Q_EMIT view->activated(node()->id());
            }
        }
    }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    NodeItem *node() const { return static_cast<NodeItem *>(object()); }
};

/// The children are the nodes, in the order of Tab.
class CanvasAccess final : public QAccessibleWidget
{
public:
    explicit CanvasAccess(CanvasView *view)
        : QAccessibleWidget(view, QAccessible::List)
    {
    }

    int childCount() const override
    {
        return static_cast<int>(view()->graphScene().orderedNodes().size());
    }
    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(
            view()->graphScene().orderedNodes().value(index));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return static_cast<int>(
            view()->graphScene().orderedNodes().indexOf(qobject_cast<NodeItem *>(child->object())));
    }
    /// The canvas has the focus for Qt, but a node has it for the user.
    QAccessibleInterface *focusChild() const override
    {
        NodeItem *const node = view()->graphScene().node(view()->graphScene().currentId());
        return node == nullptr ? QAccessibleWidget::focusChild()
                               : QAccessible::queryAccessibleInterface(node);
    }

private:
    CanvasView *view() const { return static_cast<CanvasView *>(widget()); }
};

/// Qt asks every installed factory in turn until one returns an interface.
QAccessibleInterface *makeAccess(const QString &, QObject *object)
{
    if (auto *const node = qobject_cast<NodeItem *>(object)) {
        return new NodeAccess(node); // Qt owns it
    }
    if (auto *const view = qobject_cast<CanvasView *>(object)) {
        return new CanvasAccess(view);
    }
    return nullptr;
}

} // namespace

void installCanvasAccess()
{
    QAccessible::installFactory(makeAccess); // ignores a factory that it already has
}

} // namespace corvanta::studio
