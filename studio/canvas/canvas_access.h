// Makes the canvas usable by screen readers: each node and each link is a child of the canvas, with
// its name and its state.
#pragma once

namespace corvanta::studio {

class CanvasView;

/// Register the accessible interfaces of the canvas and its items; again without effect. Call on
/// the GUI thread before the first canvas is shown.
void installCanvasAccess();
/// Tell screen readers which item has the focus; Qt does that for widgets only.
void reportFocus(CanvasView *view);

} // namespace corvanta::studio
