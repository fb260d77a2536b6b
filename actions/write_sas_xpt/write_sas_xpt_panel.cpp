// The widths of text columns are open: a text that is too wide for its column is the mistake that
// costs data.
#include "actions/write_sas_xpt/write_sas_xpt_panel.h"

#include "actions/shared/panels/panel_groups.h"
#include "actions/shared/panels/text_fields.h"
#include "panels/column_picker.h"
#include "panels/structures/text_widths_editor.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName", "createDir", "version8"}},
        shared::columnsGroup("ColWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Text columns"),
         {"autoWidth",
          {"StringColDef", editor<TextWidthsEditor>},
          "stringStorage",
          {"encoding", shared::shortEncodingField}}},
        {QT_TRANSLATE_NOOP("Panels", "Variables"),
         {"numberWidth", {"ToBoolean", editor<ColumnPicker>}, "VariableDef"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteSASXPT::Interface_ActionWriteSASXPT(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
