#include "actions/cast/cast_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Types"), {"types"}},
        {QT_TRANSLATE_NOOP("Panels", "Values that do not fit"), {"onError"}},
    };
}

} // namespace

Interface_ActionCast::Interface_ActionCast(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
