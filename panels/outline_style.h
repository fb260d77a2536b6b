// The style of the controls of panels: that of the program, with outlines that can be seen.
//
// Fusion draws the outlines of check boxes and fields darker than the background, so that they
// vanish in dark palettes. Threads: the GUI thread.
#pragma once

class QWidget;

namespace corvanta {

/// Draw `control` with outlines of outlineColor(). Without effect when the program has another
/// style than Fusion, which then decides.
void showOutline(QWidget *control);

} // namespace corvanta
