// The structure comes before the columns: with levels, the columns of the table are not used.
#include "actions/write_xml/write_xml_panel.h"

#include "actions/shared/panels/level_editors.h"
#include "actions/shared/panels/panel_groups.h"
#include "panels/basic_editors.h"

namespace {

using namespace corvanta;
using Fold = PanelGroup::Fold;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName", "fileMode", "charMode", "createDir"}},
        {QT_TRANSLATE_NOOP("Panels", "Structure"),
         {{"Levels", shared::xmlLevelsEditor}, "Prefix", "Suffix"}},
        shared::columnsGroup("ToWrite"),
        shared::rowsGroup(),
        {QT_TRANSLATE_NOOP("Panels", "Values"),
         {"nullString",
          "nullNumber",
          "nan",
          {"floatToString", editor<FloatFormatEditor>},
          "useComma",
          "wellFormed"},
         Fold::Folded},
        {kAdvancedGroup, {"humanReadable", "indentStart", "alwaysWrite", "timeOut"}, Fold::Folded},
    };
}

} // namespace

Interface_ActionWriteXML::Interface_ActionWriteXML(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
