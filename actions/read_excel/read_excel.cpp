#include "actions/read_excel/read_excel.h"

namespace corvanta {

ActionReadExcel::ActionReadExcel(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kReadExcelEntry, saved, parameters)
{
}

} // namespace corvanta
