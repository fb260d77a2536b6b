#include "actions/read_excel_sheets/read_excel_sheets.h"

namespace corvanta {

ActionReadExcelSheets::ActionReadExcelSheets(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kReadExcelSheetsEntry, saved, parameters)
{
}

} // namespace corvanta
