// Target and sheet are open, because the mode decides which of their fields count. Everything about
// the look of cells is folded.
#include "actions/write_excel/write_excel_panel.h"

#include "actions/shared/panels/panel_groups.h"
#include "actions/shared/panels/text_fields.h"
#include "panels/basic_editors.h"
#include "panels/column_picker.h"
#include "panels/suggestion_field.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

// The look of a sheet: one of a few texts, of which users need not know the spelling.
constexpr NamedValue kHeaderStyles[] = {
    {"", QT_TRANSLATE_NOOP("Panels", "no style")},
    {"bold", QT_TRANSLATE_NOOP("Panels", "bold")},
    {"fill", QT_TRANSLATE_NOOP("Panels", "light blue background")},
    {"bold,fill", QT_TRANSLATE_NOOP("Panels", "bold, light blue background")},
};
constexpr NamedValue kOverflows[] = {
    {"", QT_TRANSLATE_NOOP("Panels", "the same sheet, with a warning")},
    {"newSheet", QT_TRANSLATE_NOOP("Panels", "further sheets")},
};
constexpr NamedValue kSheetWidths[] = {
    {"auto", QT_TRANSLATE_NOOP("Panels", "from the header and the first rows")},
};

FieldEditor *headerStyleField(const FieldContext &context)
{
    return new ChoiceEditor(context, kHeaderStyles);
}

FieldEditor *overflowField(const FieldContext &context)
{
    return new ChoiceEditor(context, kOverflows);
}

FieldEditor *columnWidthsField(const FieldContext &context)
{
    return new SuggestionField(context, kSheetWidths);
}

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
          "keepOddDates",
          "dateFormatExcel",
          "dateWidths",
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
         {{"headerStyle", headerStyleField},
          "freezeHeader",
          "autoFilter",
          {"columnWidths", columnWidthsField},
          {"columnFormats", shared::numberFormatsField}},
         Fold::Folded},
        {kAdvancedGroup,
         {"namedRange",
          "nrIncludeTitleRow",
          "alwaysWrite",
          {"overflow", overflowField},
          "crop",
          "runExcel",
          "timeOut",
          "excelHack",
          "useComma"},
         Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteExcel::Interface_ActionWriteExcel(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
