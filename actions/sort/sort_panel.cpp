#include "actions/sort/sort_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Order"), {"keys"}},
        {QT_TRANSLATE_NOOP("Panels", "Text columns"), {"kinds"}, PanelGroup::Fold::Folded},
    };
}

} // namespace

Interface_ActionSort::Interface_ActionSort(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
