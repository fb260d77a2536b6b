// One state of a graph that is edited.
//
// A state is a value that shares its parts with other states, so that the undo stack keeps one for
// each step: an edit copies only a list of pointers. Threads: a state may be read by any thread.
#pragma once
#include "corvanta/corvanta_graph.h"

#include <QMap>
#include <QMetaType>
#include <QPointF>
#include <QString>
#include <QVector>

#include <memory>

namespace corvanta::studio {

/// A pin of an action; the context says whether it is an input or an output pin.
struct PinRef
{
    QString action; ///< id
    int pin = 0;    ///< from 0
    bool operator==(const PinRef &) const = default;
};

/// A link from an output pin to an input pin.
struct LinkRef
{
    PinRef from;
    PinRef to;
    bool operator==(const LinkRef &) const = default;
};

/// The position on the canvas for one of a file or a user: whole numbers, so that a file differs
/// only when something moves, and within what the canvas can draw. What is not a number becomes 0.
QPointF canvasPosition(QPointF position);

/// An action of the graph.
struct Node
{
    int key = 0;     ///< identifies the action in its document, whatever its id is
    int origin = -1; ///< number of its element in the opened file; -1: it was added later
    // What the file has of the action.

    QString id;       ///< also its name; unique in the graph
    XMLNode element;  ///< named after the type, with the parameters
    int revision = 0; ///< of the element; differs after each edit
    QPointF position; ///< upper left corner, see canvasPosition()
    /// False for an action without a position in its file; `position` is then only shown.
    bool isPlaced = false;
    bool isElementEdited = false; ///< the element differs from that in the opened file
    QString comment;
};
using NodePtr = std::shared_ptr<const Node>;

/// A link with its place in the file.
struct Wire
{
    LinkRef ends;
    int origin = -1; ///< as in Node
    bool operator==(const Wire &) const = default;
};

/// A text on the canvas that does not belong to an action.
struct Note
{
    int key = 0;     ///< identifies the note in its document
    int origin = -1; ///< as in Node
    QPointF position;
    QString text;
    bool operator==(const Note &) const = default;
};

/// Everything that an edit can change. The orders are those of the file.
struct Content
{
    QVector<NodePtr> nodes;
    QVector<Wire> wires;
    QVector<Note> notes;
    QMap<QString, QString> variables; ///< by name

    /// Index in `nodes`; -1 if there is no such action.
    int indexOf(const QString &id) const;
    /// Index in `wires`; -1 if there is no such link.
    int indexOf(const LinkRef &link) const;
    /// Replace a node by a changed copy: `change(Node &)`.
    template <class Change> void changeNode(int index, Change change)
    {
        Node copy = *nodes[index];
        change(copy);
        nodes[index] = std::make_shared<const Node>(std::move(copy));
    }
    /// The graph as the host knows it, without its file name and version.
    CorvantaGraph graph() const;
};

} // namespace corvanta::studio

Q_DECLARE_METATYPE(corvanta::studio::PinRef)
Q_DECLARE_METATYPE(corvanta::studio::LinkRef)
