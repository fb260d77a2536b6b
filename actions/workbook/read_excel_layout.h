// The layout of the panels of readExcel and readExcelOld, which have the same parameters.
//
// docs/panels.md describes layouts. A parameter that no group names is at the end of the last one.
#pragma once
#include "panels/panel_layout.h"

namespace corvanta {

/// The groups of fields in their order. The panel that takes the layout owns it.
PanelLayout readExcelLayout();

} // namespace corvanta
