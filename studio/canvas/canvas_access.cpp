// Qt knows only widgets; items of a scene need interfaces of their own.
#include "studio/canvas/canvas_access.h"

#include "studio/canvas/canvas_view.h"

#include <QAccessible>
#include <QAccessibleWidget>

#include <algorithm>
#include <iterator>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// The view that shows the scene of an item; null if there is none.
CanvasView *viewOf(const QGraphicsItem &item)
{
    const auto views = item.scene() == nullptr ? QList<QGraphicsView *>() : item.scene()->views();
    return views.isEmpty() ? nullptr : qobject_cast<CanvasView *>(views.first());
}

/// A node or a link as an item of a list, which most screen readers announce best.
class ItemAccess : public QAccessibleObject, public QAccessibleActionInterface
{
public:
    ItemAccess(QObject *object, const QGraphicsItem &item)
        : QAccessibleObject(object)
        , m_item(item)
    {
    }

    QAccessibleInterface *parent() const override
    {
        return QAccessible::queryAccessibleInterface(viewOf(m_item));
    }
    int childCount() const override { return 0; }
    QAccessibleInterface *child(int) const override { return nullptr; }
    int indexOfChild(const QAccessibleInterface *) const override { return -1; }
    QAccessible::Role role() const override { return QAccessible::ListItem; }

    /// What the user can do with the item, and what is done.
    QAccessible::State state() const override
    {
        QAccessible::State state;
        state.focusable = true;
        state.selectable = true;
        state.focused = m_item.scene() != nullptr && m_item.scene()->focusItem() == &m_item;
        state.selected = m_item.isSelected();
        return state;
    }

    /// On the screen, for magnifiers that follow the focus.
    QRect rect() const override
    {
        const CanvasView *const view = viewOf(m_item);
        if (view == nullptr) {
            return {};
        }
        const QRect area = view->mapFromScene(m_item.sceneBoundingRect()).boundingRect();
        return {view->viewport()->mapToGlobal(area.topLeft()), area.size()};
    }

    /// Qt asks for each further interface in this way.
    void *interface_cast(QAccessible::InterfaceType kind) override
    {
        return kind == QAccessible::ActionInterface
                   ? static_cast<QAccessibleActionInterface *>(this)
                   : nullptr;
    }

    QStringList actionNames() const override { return {setFocusAction()}; }
    QStringList keyBindingsForAction(const QString &) const override { return {}; }

private:
    const QGraphicsItem &m_item; // the same object as object()
};

class NodeAccess final : public ItemAccess
{
public:
    explicit NodeAccess(NodeItem *node)
        : ItemAccess(node, *node)
    {
    }

    /// The name alone while the user moves, the description on request.
    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name          ? node()->id()
               : kind == QAccessible::Description ? node()->spokenText()
                                                  : QString();
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    /// Pressing a node is the same as Enter.
    void doAction(const QString &name) override
    {
        if (CanvasView *const view = viewOf(*node())) {
            view->showAction(node()->id());
            if (name == pressAction()) {
                Q_EMIT view->activated(node()->id());
            }
        }
    }

private:
    NodeItem *node() const { return static_cast<NodeItem *>(object()); }
};

class LinkAccess final : public ItemAccess
{
public:
    explicit LinkAccess(LinkItem *link)
        : ItemAccess(link, *link)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name          ? link()->spokenName()
               : kind == QAccessible::Description ? link()->spokenText()
                                                  : QString();
    }

    /// The keys of the canvas act on the link then.
    void doAction(const QString &) override
    {
        if (CanvasView *const view = viewOf(*link())) {
            view->showLink(link());
        }
    }

private:
    LinkItem *link() const { return static_cast<LinkItem *>(object()); }
};

class NoteAccess final : public ItemAccess
{
public:
    explicit NoteAccess(NoteItem *note)
        : ItemAccess(note, *note)
    {
    }

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? note()->text() : QString();
    }

    QStringList actionNames() const override { return {pressAction(), setFocusAction()}; }
    void doAction(const QString &name) override
    {
        if (CanvasView *const view = viewOf(*note())) {
            view->showNote(note());
            if (name == pressAction()) {
                view->editNote(note()->key());
            }
        }
    }

private:
    NoteItem *note() const { return static_cast<NoteItem *>(object()); }
};

/// The children are the nodes, in the order of Tab, then the links and the notes, in those of their
/// keys.
class CanvasAccess final : public QAccessibleWidget
{
public:
    explicit CanvasAccess(CanvasView *view)
        : QAccessibleWidget(view, QAccessible::List)
    {
    }

    int childCount() const override { return static_cast<int>(items().size()); }
    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(items().value(index));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return static_cast<int>(items().indexOf(child->object()));
    }
    /// The canvas has the focus for Qt, but an item has it for the user.
    QAccessibleInterface *focusChild() const override
    {
        QObject *const item = focusObjectOf(*view());
        return item == nullptr ? QAccessibleWidget::focusChild()
                               : QAccessible::queryAccessibleInterface(item);
    }

    /// The node or link that keys act on; null if there is none.
    static QObject *focusObjectOf(const CanvasView &view)
    {
        const GraphScene &scene = view.graphScene();
        if (auto *const link = qgraphicsitem_cast<LinkItem *>(scene.focusItem())) {
            return link;
        }
        if (auto *const note = qgraphicsitem_cast<NoteItem *>(scene.focusItem())) {
            return note;
        }
        return scene.node(scene.currentId());
    }

private:
    CanvasView *view() const { return static_cast<CanvasView *>(widget()); }
    QObjectList items() const
    {
        QObjectList all;
        all.reserve(view()->graphScene().links().size());
        std::ranges::copy(view()->graphScene().orderedNodes(), std::back_inserter(all));
        std::ranges::copy(view()->graphScene().links(), std::back_inserter(all));
        std::ranges::copy(view()->graphScene().notes(), std::back_inserter(all));
        return all;
    }
};

/// Qt asks every installed factory in turn until one returns an interface.
QAccessibleInterface *makeAccess(const QString &, QObject *object)
{
    if (auto *const node = qobject_cast<NodeItem *>(object)) {
        return new NodeAccess(node); // Qt owns it
    }
    if (auto *const link = qobject_cast<LinkItem *>(object)) {
        return new LinkAccess(link);
    }
    if (auto *const note = qobject_cast<NoteItem *>(object)) {
        return new NoteAccess(note);
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

void reportFocus(CanvasView *view)
{
    QObject *const item = CanvasAccess::focusObjectOf(*view);
    if (item != nullptr && view->hasFocus() && QAccessible::isActive()) {
        QAccessibleEvent event(item, QAccessible::Focus);
        QAccessible::updateAccessibility(&event);
    }
}

} // namespace corvanta::studio
