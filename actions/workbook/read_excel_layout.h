// The layout of the panels of readExcel and readExcelOld, which have the same parameters.
#pragma once
#include "panels/panel_layout.h"

namespace corvanta {

PanelLayout readExcelLayout();

} // namespace corvanta
