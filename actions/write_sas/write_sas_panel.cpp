#include "actions/write_sas/write_sas_panel.h"

#include "actions/shared/panel_groups.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName", "createDir"}},
        shared::columnsGroup("ColWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Text columns"),
         {"autoWidth", "f1", "f2", "StringColDef", "stringStorage"}},
        {QT_TRANSLATE_NOOP("Panels", "Variables"), {"columnNameMode", "VariableDef"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteSAS::Interface_ActionWriteSAS(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
