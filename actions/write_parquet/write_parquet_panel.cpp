#include "actions/write_parquet/write_parquet_panel.h"

#include "actions/shared/panels/panel_groups.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"file", "createDir", "codec"}},
        shared::columnsGroup("ToWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Several files"),
         {"split", {"splitVar", editor<ColumnField>}, "segmentSize"}},
        {QT_TRANSLATE_NOOP("Panels", "Types"),
         {"logicalTypes",
          {"ToBoolean", editor<ColumnPicker>},
          {"ToInteger", editor<ColumnPicker>},
          {"ToDate", editor<ColumnPicker>},
          {"ToDateTime", editor<ColumnPicker>},
          {"ToTime", editor<ColumnPicker>},
          "keyStorage"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Storage"),
         {"dictionaryPages", "statistics", "rowGroupSize", "pageSize"},
         Fold::Folded},
        {kAdvancedGroup, {"timeOut"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteParquet::Interface_ActionWriteParquet(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
