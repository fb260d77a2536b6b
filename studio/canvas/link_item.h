// A link on the canvas: a curve from an output pin to an input pin, with the number of rows of the
// last run. Screen readers need the QObject. Threads: the GUI thread.
#pragma once
#include "studio/canvas/node_item.h"

#include <QGraphicsPathItem>
#include <QObject>

namespace corvanta::studio {

class LinkItem final : public QObject, public QGraphicsPathItem
{
    Q_OBJECT

public:
    /// Both items must outlive this one.
    LinkItem(GraphDocument &document, const LinkRef &link, NodeItem *from, NodeItem *to);
    /// For qgraphicsitem_cast.
    enum { Type = UserType + 2 };
    int type() const override { return Type; }

    const LinkRef &link() const { return m_link; }
    /// After one of its actions was renamed.
    void setLink(const LinkRef &link) { m_link = link; }
    /// The nodes that it joins.
    NodeItem *from() const { return m_from; }
    NodeItem *to() const { return m_to; }
    /// Follow the pins.
    void refresh();
    /// For screen readers: the actions that it joins; and the pins, the rows and the state.
    QString spokenName() const;
    QString spokenText() const;
    /// Show that an action can be inserted here.
    void setTarget(bool isTarget);
    /// Whether a place is at the end of the link where another pin can be given to it.
    bool isNearStart(QPointF place) const;
    bool isNearEnd(QPointF place) const;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    /// The curve between two pins.
    static QPainterPath curve(QPointF from, QPointF to);

private:
    void paintRows(QPainter *painter, const CanvasColors &colors) const;

    GraphDocument &m_document;
    LinkRef m_link;
    NodeItem *m_from;
    NodeItem *m_to;
    bool m_isTarget = false;
};

} // namespace corvanta::studio
