#include "actions/read_excel_sheets/read_excel_sheets_panel.h"

#include "panels/preview/preview.h"

namespace {

using namespace corvanta;

PanelLayout panelLayout()
{
    return {
        {QT_TRANSLATE_NOOP("Panels", "Source"), {"fileName", "fileNameFromPin"}},
        previewGroup(),
    };
}

} // namespace

Interface_ActionReadExcelSheets::Interface_ActionReadExcelSheets(QWidget *parent,
                                                                 ActionItem *action)
    : PropertyPanel(parent, action, panelLayout())
{
}
