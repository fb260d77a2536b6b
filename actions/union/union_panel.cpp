#include "actions/union/union_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Columns"), {"match", "lastColumn"}},
    };
}

} // namespace

Interface_ActionUnion::Interface_ActionUnion(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
