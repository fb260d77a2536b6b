// A link that the user is drawing, with the mouse or with the keyboard.
//
// It begins at a pin, or with an end of a link that gets another pin. Threads: the GUI thread.
#pragma once
#include "studio/document/graph_document.h"

#include <QPointF>

#include <memory>
#include <optional>

class QGraphicsPathItem;
class QGraphicsSceneMouseEvent;

namespace corvanta::studio {

class GraphScene;
class NodeItem;

class LinkDrag
{
public:
    /// `scene` must outlive the object.
    explicit LinkDrag(GraphScene &scene);
    ~LinkDrag();

    bool isActive() const { return m_fixed.has_value(); }
    /// Begin at what is at `place`: a pin, or an end of a link. Returns false if there is neither.
    bool beginAt(QPointF place);
    /// Begin at an output pin with the keyboard, and offer the first possible target.
    void beginFrom(const PinRef &output);
    /// Begin to give the end of a link another pin with the keyboard.
    void beginReroute(const LinkRef &link);
    /// Draw the link to a place, and say why it cannot end there.
    void moveTo(QPointF place);
    /// Add or re-route the link if the place is one for it; otherwise say why not.
    /// From an output to the background: ask for a new action, see GraphScene::actionWanted().
    void dropAt(QPointF place);
    /// End without an edit. Without effect if nothing is drawn.
    void cancel();

    // With the keyboard: the possible targets one after the other.

    /// Offer the target `step` after the present one, in the order of Tab.
    void nextTarget(int step);
    /// Add the link to the offered target.
    void accept();

private:
    /// What the link would be with the pin at a place.
    struct Target
    {
        std::optional<LinkRef> link;     ///< nothing: there is no pin and no node
        std::optional<LinkRef> replaced; ///< the link that the input has now
        bool isPossible = false;
        QString why; ///< why not, or what else would happen
    };
    Target targetAt(QPointF place) const;
    Target judged(const PinRef &other, bool isReplacing) const;
    bool beginWithLink(const LinkRef &link, bool isEndMoved);
    void begin(const PinRef &fixed, bool isOutput);
    void offerTargets();
    PinRef bestPin(const NodeItem &node) const;
    QPointF fixedPosition() const;
    void drawTo(QPointF place, const Target &target);
    void finish(const Target &target);

    GraphScene &m_scene;
    std::optional<PinRef> m_fixed;     // the end that stays; nothing: not active
    bool m_isOutput = true;            // what `m_fixed` is
    std::optional<LinkRef> m_rerouted; // the link that gets another end
    std::unique_ptr<QGraphicsPathItem> m_curve;
    QString m_lastWhy;         // is shown once
    QVector<PinRef> m_targets; // with the keyboard
    qsizetype m_targetIndex = -1;
};

} // namespace corvanta::studio
