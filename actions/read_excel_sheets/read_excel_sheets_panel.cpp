#include "actions/read_excel_sheets/read_excel_sheets_panel.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
    };
}

} // namespace

Interface_ActionReadExcelSheets::Interface_ActionReadExcelSheets(QWidget *parent,
                                                                 ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
