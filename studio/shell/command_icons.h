// The icons of the tool bar, drawn in the colours of a palette, so that they are visible on light
// and on dark windows.
//
// Threads: the GUI thread.
#pragma once
#include <QIcon>
#include <QPalette>

namespace corvanta::studio {

/// The icon of a command, by its name in the table of Commands; null for a command without one.
/// Sharp at 16, 24, 32, 48 and 64 pixels.
QIcon commandIcon(const QString &command, const QPalette &palette);

/// The icon of an action. On a dark palette it is on a light tile, because the icons of actions are
/// drawn for a light background.
QIcon actionIcon(const QPixmap &drawn, const QPalette &palette);

} // namespace corvanta::studio
