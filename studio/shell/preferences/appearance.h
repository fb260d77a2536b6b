// Colours and text size of all windows.
//
// Threads: the GUI thread.
#pragma once
#include "studio/shell/preferences/settings.h"

#include <QPalette>

namespace corvanta::studio {

/// The palette of a theme. That of Theme::System is the style's own.
QPalette themePalette(Theme theme);

/// Set colours and text size of the application. The first call fixes the size that 100 percent
/// stands for. Windows that are open change too.
void applyAppearance(Theme theme, int fontPercent);

/// Whether texts are lighter than their background.
bool isDark(const QPalette &palette);

} // namespace corvanta::studio
