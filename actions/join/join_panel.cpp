// The keys decide about everything else, so they come first; names of columns only matter when both
// tables have them.
#include "actions/join/join_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Keys"), {{"keys", editor<ColumnPairPicker>}, "type"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"), {"suffix"}},
        {QT_TRANSLATE_NOOP("Panels", "Text columns"),
         {{"kinds", shared::columnKindsField}},
         PanelGroup::Fold::Folded},
    };
}

} // namespace

Interface_ActionJoin::Interface_ActionJoin(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
