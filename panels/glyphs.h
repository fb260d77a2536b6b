// Small line drawings for buttons and marks, in the colours of the palette and sharp at any scale.
//
// Threads: the GUI thread.
#pragma once
#include <QFontMetrics>
#include <QIcon>
#include <QPalette>
#include <QPixmap>

namespace corvanta {

enum class Glyph {
    Folded,   ///< the content of a group is hidden
    Unfolded, ///< the content of a group is shown
    Add,
    Remove,
    Up,
    Down,
    ToRight,
    ToLeft,
    Folder,
    Check,   ///< everything is as it should be
    Cross,   ///< something is missing
    Warning, ///< something needs attention
    New,     ///< something will be created
    Open,    ///< another program shows it
    Reset,   ///< the default comes back
};

/// The glyph in one colour, `size` logical pixels wide and high, for a screen with `ratio` device
/// pixels per logical pixel.
QPixmap glyphPixmap(Glyph glyph, const QColor &color, int size, double ratio);
/// A size at the usual font, in logical pixels, for a larger font.
int scaledToFont(int pixels, const QFontMetrics &font);
/// The same as an icon of any size. It is dimmed when its control is disabled.
QIcon glyphIcon(Glyph glyph, const QColor &color);
/// The mark of an item of a list that needs attention, readable also on a selected item.
QIcon warningMark(const QPalette &palette);

} // namespace corvanta
