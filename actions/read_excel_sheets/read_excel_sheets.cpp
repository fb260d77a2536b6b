#include "actions/read_excel_sheets/read_excel_sheets.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadExcelSheets::ActionReadExcelSheets(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readExcelSheets"), saved, parameters)
{
}

} // namespace corvanta
