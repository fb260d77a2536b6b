// The types have no default, so their group comes first and says that a value is required.
#include "actions/cast/cast_panel.h"

#include "actions/shared/panels/text_fields.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Types"), {{"types", shared::columnTypesField}}},
        {QT_TRANSLATE_NOOP("Panels", "Values that do not fit"), {"onError"}},
    };
}

} // namespace

Interface_ActionCast::Interface_ActionCast(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
