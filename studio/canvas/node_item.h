// An action on the canvas: icon, name, type, pins, state, comment.
//
// The item shows what the document has; only its position differs while the user drags it.
// Coordinates are those of the scene, in logical pixels at a zoom of 100 %. Threads: the GUI
// thread.
#pragma once
#include "studio/document/graph_document.h"

#include <QGraphicsObject>

namespace corvanta::studio {

class CanvasColors;

class NodeItem final : public QGraphicsObject
{
    Q_OBJECT

public:
    /// `document` must outlive the item and have the action.
    NodeItem(GraphDocument &document, const QString &id);
    /// For qgraphicsitem_cast.
    enum { Type = UserType + 1 };
    int type() const override { return Type; }

    QString id() const { return m_id; }
    /// After the action was renamed.
    void setId(const QString &id);
    /// Show the document's present state of the action.
    void refresh();
    /// What is wrong with the action, one problem per line; empty: nothing.
    void setProblems(const QString &problems);
    QString problems() const { return m_problems; }

    /// Numbers of pins that are shown.
    int inputs() const { return m_inputs; }
    int outputs() const { return m_outputs; }
    /// The middle of a pin.
    QPointF inputPosition(int pin) const;
    QPointF outputPosition(int pin) const;
    /// The pin at a place; negative if there is none.
    int inputAt(QPointF place) const { return pinAt(place, true); }
    int outputAt(QPointF place) const { return pinAt(place, false); }
    /// Without pins and comment.
    QRectF body() const { return {QPointF(), m_size}; }
    /// A sentence for screen readers: name, type, state, links.
    QString spokenText() const;

    QRectF boundingRect() const override;
    QPainterPath shape() const override;
    void paint(QPainter *painter, const QStyleOptionGraphicsItem *option, QWidget *widget) override;

    /// Of every node; the height depends on the pins.
    static constexpr double kWidth = 192;
    /// Distance of the positions to which nodes snap.
    static constexpr double kGrid = 16;
    static constexpr double kPinRadius = 5;
    /// The middle of a node that has few pins.
    static constexpr QPointF kCenter{kWidth / 2, kGrid * 2};

Q_SIGNALS:
    /// Its place differs from before; the links must follow.
    void movedByUser();

protected:
    void hoverMoveEvent(QGraphicsSceneHoverEvent *event) override;
    QVariant itemChange(GraphicsItemChange change, const QVariant &value) override;

private:
    int pinAt(QPointF place, bool isInput) const;
    double pinY(int pin, int count) const;
    void paintBody(QPainter *painter, const CanvasColors &colors, bool isSelected) const;
    void paintTexts(QPainter *painter, const CanvasColors &colors) const;
    void paintIcon(QPainter *painter, const QRectF &box) const;
    void paintComment(QPainter *painter, const CanvasColors &colors) const;
    QString tip() const;
    void paintPins(QPainter *painter, const CanvasColors &colors) const;
    void paintState(QPainter *painter, const CanvasColors &colors) const;

    GraphDocument &m_document;
    QString m_id;
    QString m_type;
    QString m_comment;
    QString m_problems;
    int m_inputs = 0;
    int m_outputs = 0;
    bool m_isKnown = true; // the module has the type
    QSizeF m_size;
    bool m_isRefreshing = false; // a change of the position is not by the user
};

/// How much larger than at 100 % the canvas is shown, so that its texts have the size of those of
/// the window. Nodes keep their size in the scene, because the file has their places.
double canvasScale();
/// A font for items of the canvas, `factor` times the usual size.
QFont canvasFont(double factor, bool isBold);
/// 1234567 as "1,234,567", in the user's locale.
QString rowsText(qint64 rows);

} // namespace corvanta::studio
