#include "actions/shared/panels/panel_groups.h"

#include "panels/column_picker.h"

namespace corvanta::shared {

PanelGroup columnsGroup(const char *list)
{
    return {QT_TRANSLATE_NOOP("Panels", "Columns"),
            {"writeAllColumns", {list, editor<ColumnPicker>}, "checkNameCollision"},
            PanelGroup::Fold::Folded};
}

/// Which rows are written: the same parameters in all writers.
PanelGroup rowsGroup()
{
    return {QT_TRANSLATE_NOOP("Panels", "Rows"),
            {"writeAllRows", {"testCol", editor<ColumnField>}, "testValue"},
            PanelGroup::Fold::Folded};
}

} // namespace corvanta::shared
