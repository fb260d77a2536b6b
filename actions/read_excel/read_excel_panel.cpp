#include "actions/read_excel/read_excel_panel.h"

#include "actions/workbook/read_excel_layout.h"

Interface_ActionReadExcel::Interface_ActionReadExcel(QWidget *parent, ActionItem *action)
    : PropertyPanel(parent, action, corvanta::readExcelLayout())
{
}
