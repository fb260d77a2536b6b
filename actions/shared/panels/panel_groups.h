// Groups that the panels of several writers have.
#pragma once
#include "panels/panel_layout.h"

namespace corvanta::shared {

/// Which columns are written. `list` is the parameter with the names of the columns.
PanelGroup columnsGroup(const char *list);
/// Which rows are written.
PanelGroup rowsGroup();

} // namespace corvanta::shared
