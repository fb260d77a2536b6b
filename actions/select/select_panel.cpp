// Columns first, in the order in which the action applies them: chosen, then renamed.
#include "actions/select/select_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Columns"),
         {{"columns", editor<ColumnPicker>}, {"rename", shared::newNamesField}}},
        {QT_TRANSLATE_NOOP("Panels", "Rows"), {"firstRow", "lastRow"}},
    };
}

} // namespace

Interface_ActionSelect::Interface_ActionSelect(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
