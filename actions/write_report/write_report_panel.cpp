#include "actions/write_report/write_report_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Files"), {"template", "output"}},
        {QT_TRANSLATE_NOOP("Panels", "Charts"), {"nPinIn", "Chart"}},
        {QT_TRANSLATE_NOOP("Panels", "Options"), {"cleanTags"}},
    };
}

} // namespace

Interface_ActionWriteReport::Interface_ActionWriteReport(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
