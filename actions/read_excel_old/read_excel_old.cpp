#include "actions/read_excel_old/read_excel_old.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadExcelOld::ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readExcelOld"), saved, parameters)
{
}

} // namespace corvanta
