#include "actions/write_sas/write_sas_panel.h"

#include "actions/shared/panels/panel_groups.h"
#include "panels/column_picker.h"
#include "panels/structures/text_widths_editor.h"

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
         {"autoWidth", "f1", "f2", {"StringColDef", editor<TextWidthsEditor>}, "stringStorage"}},
        {QT_TRANSLATE_NOOP("Panels", "Variables"),
         {"columnNameMode", {"ToBoolean", editor<ColumnPicker>}, "VariableDef"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteSAS::Interface_ActionWriteSAS(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
