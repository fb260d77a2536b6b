#include "actions/write_csv/write_csv_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName"}},
        {QT_TRANSLATE_NOOP("Panels", "Format"), {"separator", "header", "encoding", "lineEnd"}},
    };
}

} // namespace

Interface_ActionWriteCSV::Interface_ActionWriteCSV(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
