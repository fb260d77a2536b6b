// The nodes and links of a document as graphics items, which follow the document.
//
// Threads: the GUI thread.
#pragma once
#include "studio/canvas/link_item.h"
#include "studio/canvas/node_item.h"
#include "studio/canvas/note_item.h"
#include "studio/document/graph_document.h"

#include <QGraphicsScene>
#include <QHash>

namespace corvanta::studio {

class LinkDrag;

class GraphScene final : public QGraphicsScene
{
    Q_OBJECT

public:
    /// `document` must outlive the scene.
    explicit GraphScene(GraphDocument &document, QObject *parent = nullptr);
    ~GraphScene() override;

    GraphDocument &document() const { return m_document; }
    NodeItem *node(const QString &id) const { return m_nodes.value(id); }
    /// The item of a link; null if there is none.
    LinkItem *link(const LinkRef &ends) const;
    const QVector<LinkItem *> &links() const { return m_links; }
    /// In the order of the file.
    const QVector<NoteItem *> &notes() const { return m_notes; }
    QVector<int> selectedNotes() const;
    /// The nodes from left to right, then from top to bottom: the order of the keyboard.
    QVector<NodeItem *> orderedNodes() const;

    /// What the nodes and links cover, without the room around them.
    QRectF itemsRect() const;
    bool isSnapping() const { return m_isSnapping; }
    /// The nearest place on the grid, or the same place without snapping.
    QPointF snapped(QPointF place) const;
    /// Whether nodes that the user drags keep to the grid.
    void setSnapping(bool snaps);

    // The selection. The current node is the one with the focus, else the only selected one.

    /// In the order of the keyboard.
    QStringList selectedIds() const;
    QVector<LinkRef> selectedLinks() const;
    QString currentId() const;
    /// Select these nodes, links and notes and nothing else.
    void select(const QStringList &ids, const QVector<LinkRef> &links = {},
                const QVector<int> &notes = {});
    /// Select only this node, and give it the focus.
    void setCurrent(const QString &id);

    /// The link that an action dropped here would be inserted into; null if there is none.
    LinkItem *linkAt(QPointF place, const NodeItem *except = nullptr) const;
    /// The input for rows that are dropped on a node: the pin there, else the first free one;
    /// without an action if there is no node.
    PinRef inputFor(QPointF place) const;
    /// Mark that link; null: none.
    void markLink(LinkItem *link);
    LinkDrag &linkDrag() { return *m_drag; }

Q_SIGNALS:
    /// Why something is not possible, or what happens, for the status bar and screen readers.
    void message(const QString &text);
    /// The user wants an action for the rows of `from`; an empty id: for none. `place` is in the
    /// scene.
    void actionWanted(const corvanta::studio::PinRef &from, QPointF place);
    /// The user wants to insert an action into a link, at a place in the scene.
    void insertionWanted(const corvanta::studio::LinkRef &link, QPointF place);
    /// The user wants to edit this action.
    void activated(const QString &id);
    /// The user wants to edit this note.
    void noteActivated(int key);
    /// The current node or the selection is another one.
    void selectionMoved();

protected:
    void mousePressEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseMoveEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseReleaseEvent(QGraphicsSceneMouseEvent *event) override;
    void mouseDoubleClickEvent(QGraphicsSceneMouseEvent *event) override;
    void helpEvent(QGraphicsSceneHelpEvent *event) override;

private:
    // Slots of the document's signals.

    void rebuild();
    void addNode(const QString &id);
    void removeNode(const QString &id);
    void renameNode(const QString &oldId, const QString &id);
    void addLinkItem(const LinkRef &link);
    void removeLinkItem(const LinkRef &link);
    void refreshLinksOf(const NodeItem *node);
    void refreshPins(const QString &id);
    void showProblems();
    void showNotes();
    // What the mouse has done, as a step.

    void commitMove(const NodeItem *dropped);
    NodeItem *insertable() const;

    GraphDocument &m_document;
    QHash<QString, NodeItem *> m_nodes; // owned by the scene
    QVector<LinkItem *> m_links;        // owned by the scene
    QVector<NoteItem *> m_notes;        // owned by the scene
    LinkItem *m_marked = nullptr;
    bool m_isSnapping = true;
    std::unique_ptr<LinkDrag> m_drag;
};

} // namespace corvanta::studio
