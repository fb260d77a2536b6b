// The kinds of text columns are folded: they are needed only to compare texts as numbers.
#include "actions/filter/filter_panel.h"

#include "actions/shared/panels/text_fields.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Rows"), {"where"}},
        {QT_TRANSLATE_NOOP("Panels", "Text columns"),
         {{"kinds", shared::columnKindsField}, {"decimal", shared::decimalSignField}},
         PanelGroup::Fold::Folded},
    };
}

} // namespace

Interface_ActionFilter::Interface_ActionFilter(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
