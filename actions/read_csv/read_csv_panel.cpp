#include "actions/read_csv/read_csv_panel.h"

#include "panels/preview/preview.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName"}},
        {QT_TRANSLATE_NOOP("Panels", "Columns"), {"separator", "header", "types", "sortedOn"}},
        previewGroup(),
    };
}

} // namespace

Interface_ActionReadCSV::Interface_ActionReadCSV(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
