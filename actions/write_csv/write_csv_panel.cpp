// Two groups, both open: a text file has few settings, and all of them matter to the program that
// reads it.
#include "actions/write_csv/write_csv_panel.h"

#include "actions/shared/panels/text_fields.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Target"), {"fileName"}},
        {QT_TRANSLATE_NOOP("Panels", "Format"),
         {{"separator", shared::writeSeparatorField},
          "header",
          {"encoding", shared::encodingField},
          {"lineEnd", shared::lineEndField}}},
    };
}

} // namespace

Interface_ActionWriteCSV::Interface_ActionWriteCSV(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
