// Makes the canvas usable by screen readers: each node is a child of the canvas, with its name,
// state and links.
#pragma once

namespace corvanta::studio {

/// Register the accessible interfaces of the canvas and its nodes; again without effect. Call on
/// the GUI thread before the first canvas is shown.
void installCanvasAccess();

} // namespace corvanta::studio
