// A note on the canvas: a text that belongs to the graph and not to one of its actions.
//
// The item shows what the document has; only its position differs while the user drags it.
// Threads: the GUI thread.
#pragma once
#include "studio/document/graph_document.h"

#include <QGraphicsObject>

namespace corvanta::studio {

class NoteItem final : public QGraphicsObject
{
    Q_OBJECT

public:
    explicit NoteItem(const Note &note);
    /// For qgraphicsitem_cast.
    enum { Type = UserType + 3 };
    int type() const override { return Type; }

    int key() const { return m_note.key; }
    QString text() const { return m_note.text; }
    /// Show another state of the note.
    void setNote(const Note &note);

    QRectF boundingRect() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

protected:
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

private:
    Note m_note;
    QSizeF m_size;
    bool m_isRefreshing = false; // a change of the position is not by the user
};

} // namespace corvanta::studio
