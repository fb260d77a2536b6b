// The colours of the canvas, for light and dark palettes.
//
// Selection and states have fixed colours, one set for each kind of palette. The others are mixed
// from those of the palette. Threads: any.
#pragma once
#include "studio/document/run_state.h"

#include <QColor>
#include <QPalette>

namespace corvanta::studio {

/// Texts have a contrast of at least 4.5:1 on their background, lines and badges of 3:1.
class CanvasColors
{
public:
    /// The palette is dark if its Base is.
    explicit CanvasColors(const QPalette &palette);

    /// Below everything.
    QColor background() const { return m_background; }
    QColor grid() const { return m_grid; }
    /// Inside nodes.
    QColor node() const { return m_node; }
    /// Borders and pins of nodes without a state.
    QColor border() const { return m_border; }
    QColor text() const { return m_text; }
    QColor faintText() const { return m_faintText; } ///< types, comments, numbers of rows
    QColor link() const { return m_link; }
    /// Also of what is running.
    QColor selection() const { return m_selection; }
    /// Of targets: where a link is not possible, and where it is.
    QColor error() const { return of(NodeState::Failed); }
    QColor good() const { return of(NodeState::Done); }
    /// Of a badge and the border of its node.
    QColor of(NodeState state) const;

private:
    bool m_isDark;
    QColor m_background;
    QColor m_grid;
    QColor m_node;
    QColor m_border;
    QColor m_text;
    QColor m_faintText;
    QColor m_link;
    QColor m_selection;
};

} // namespace corvanta::studio
