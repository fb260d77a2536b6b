// Draws the icons of actions and panels.
//
// Threads: the GUI thread.
#pragma once
#include "corvanta/export.h"

#include <QPixmap>
#include <QString>

/// Draw the SVG or PNG resource `path` at `scale` (1: 64 by 64 pixels) into `cache` and return
/// `cache`. Draws again only when the scale has changed. `*key` must be null before the first call
/// and then belongs to this function. Without a GUI application `cache` stays empty.
CORVANTA_EXPORT QPixmap *renderSVG(double scale, const QString &path, QPixmap *cache, void **key);

/// A copy of `icon`, `scale` times as large, with the same aspect ratio.
CORVANTA_EXPORT QPixmap resizeIcon(const QPixmap &icon, double scale);

/// Icons (16 by 16 pixels) of the buttons that add and remove something.
CORVANTA_EXPORT QPixmap getPlusIcon();
CORVANTA_EXPORT QPixmap getMinusIcon();
