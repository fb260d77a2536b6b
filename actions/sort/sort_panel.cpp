// The kinds of text columns are folded: without them texts are compared as texts.
#include "actions/sort/sort_panel.h"

#include "actions/shared/panels/text_fields.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Order"), {{"keys", editor<SortKeyPicker>}}},
        {QT_TRANSLATE_NOOP("Panels", "Text columns"),
         {{"kinds", shared::columnKindsField}, {"decimal", shared::decimalSignField}},
         PanelGroup::Fold::Folded},
    };
}

} // namespace

Interface_ActionSort::Interface_ActionSort(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
