// Target and sheet are open, because the mode decides which of their fields count. Everything about
// the look of cells is folded.
#include "actions/write_excel/write_excel_panel.h"

#include "actions/shared/panel_groups.h"
#include "panels/basic_editors.h"
#include "panels/column_picker.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"),
         {"mode", "fileNameSource", "fileNameDestination", "createDir"}},
        {QT_TRANSLATE_NOOP("Panels", "Sheet"),
         {"sheetMode", "sheetIdx", "sheetName", "createIfNotExists", "startRow", "keepStyles",
          "firstLineContainsColumnNames"}},
        shared::columnsGroup("ToWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Dates"),
         {{"ToDate", editor<ColumnPicker>},
          "dateFormatType",
          "dateFormat",
          "isoDates",
          "dateFormatExcel",
          {"ToDateTime", editor<ColumnPicker>},
          {"ToTime", editor<ColumnPicker>}},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Numbers, formulas and links"),
         {{"floatToString", editor<FloatFormatEditor>},
          "noNans",
          {"ToBoolean", editor<ColumnPicker>},
          {"ToFormula", editor<ColumnPicker>},
          "equalisFormula",
          "urlTag",
          "forceRecompute"},
         Fold::Folded},
        {QT_TRANSLATE_NOOP("Panels", "Look"),
         {"headerStyle", "freezeHeader", "autoFilter", "columnWidths", "columnFormats"},
         Fold::Folded},
        {kAdvancedGroup,
         {"namedRange", "nrIncludeTitleRow", "alwaysWrite", "overflow", "crop", "runExcel",
          "timeOut", "excelHack", "useComma"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteExcel::Interface_ActionWriteExcel(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
