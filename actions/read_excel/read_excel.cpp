#include "actions/read_excel/read_excel.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadExcel::ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readExcel"), saved, parameters)
{
}

} // namespace corvanta
