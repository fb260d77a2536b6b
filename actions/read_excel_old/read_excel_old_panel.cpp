#include "actions/read_excel_old/read_excel_old_panel.h"

#include "actions/workbook/read_excel_layout.h"

Interface_ActionReadExcelOld::Interface_ActionReadExcelOld(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, corvanta::readExcelLayout())
{
}
