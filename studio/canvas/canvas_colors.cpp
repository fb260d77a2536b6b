// Colours that a palette does not have are mixed from those that it has.
#include "studio/canvas/canvas_colors.h"

namespace corvanta::studio {

namespace {

/// A colour between two; `share` 0 gives the first, 1 the second.
QColor mixed(const QColor &a, const QColor &b, double share)
{
    const auto channel = [&](int x, int y) { return qRound(x + (y - x) * share); };
    return {channel(a.red(), b.red()), channel(a.green(), b.green()), channel(a.blue(), b.blue())};
}

} // namespace

// The background differs from the nodes, so that they are seen without their borders.
CanvasColors::CanvasColors(const QPalette &palette)
    : m_isDark(palette.color(QPalette::Base).lightness() < 128)
    , m_background(m_isDark
                       ? palette.color(QPalette::Base).darker(115)
                       : mixed(palette.color(QPalette::Base), palette.color(QPalette::Window), 0.6))
    , m_grid(mixed(m_background, palette.color(QPalette::Text), 0.09))
    , m_node(m_isDark ? palette.color(QPalette::Base).lighter(125) : palette.color(QPalette::Base))
    , m_border(mixed(m_node, palette.color(QPalette::Text), 0.55))
    , m_text(palette.color(QPalette::Text))
    , m_faintText(mixed(m_node, m_text, 0.72))
    , m_link(mixed(m_background, m_text, 0.6))
    , m_selection(m_isDark ? QColor(0x64, 0xb5, 0xf6) : QColor(0x15, 0x65, 0xc0))
{
}

// Only results have colours of their own; canvas_test checks their contrast.
QColor CanvasColors::of(NodeState state) const
{
    switch (state) {
    case NodeState::Idle:
    case NodeState::Waiting:
    case NodeState::Stopped:
        return m_border;
    case NodeState::Running:
        return m_selection;
    case NodeState::Done:
        return m_isDark ? QColor(0x66, 0xbb, 0x6a) : QColor(0x2e, 0x7d, 0x32);
    case NodeState::Warning:
        return m_isDark ? QColor(0xff, 0xb7, 0x4d) : QColor(0xb2, 0x5a, 0x00);
    case NodeState::Failed:
        break;
    }
    return m_isDark ? QColor(0xef, 0x73, 0x70) : QColor(0xc6, 0x28, 0x28);
}

} // namespace corvanta::studio
