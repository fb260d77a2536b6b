// The structure comes before the columns: with levels, the columns of the table are not used.
#include "actions/write_json/write_json_panel.h"

#include "actions/shared/panels/level_editors.h"
#include "actions/shared/panels/panel_groups.h"
#include "panels/basic_editors.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName", "fileMode", "createDir"}},
        {QT_TRANSLATE_NOOP("Panels", "Structure"),
         {{"Levels", shared::jsonLevelsEditor}, "Prefix", "Suffix"}},
        shared::columnsGroup("ToWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"nullString",
          "nullNumber",
          "nan",
          {"floatToString", editor<FloatFormatEditor>},
          "specialBool",
          {"Bare", editor<ColumnPicker>},
          {"JsonTexts", editor<ColumnPicker>},
          "escapeControls",
          "replaceLF"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Several files"),
         {"splitFile", {"splitCol", editor<ColumnField>}, "advancedNaming"},
         Fold::Folded},
        {kAdvancedGroup, {"alwaysWrite", "timeOut"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteJSON::Interface_ActionWriteJSON(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
