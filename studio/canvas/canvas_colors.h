// The colours of the canvas, for light and dark palettes.
#pragma once
#include "studio/document/run_state.h"

#include <QColor>
#include <QPalette>

namespace corvanta::studio {

/// Texts have a contrast of at least 4.5:1 on their background, lines and badges of 3:1.
class CanvasColors
{
public:
    explicit CanvasColors(const QPalette &palette);

    QColor background() const { return m_background; }
    QColor grid() const { return m_grid; }
    QColor node() const { return m_node; }
    QColor border() const { return m_border; }
    QColor text() const { return m_text; }
    QColor faintText() const { return m_faintText; } ///< types, comments, numbers of rows
    QColor link() const { return m_link; }
    QColor selection() const { return m_selection; }
    QColor error() const { return of(NodeState::Failed); }
    QColor good() const { return of(NodeState::Done); }
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
