#include "actions/read_excel_old/read_excel_old.h"

namespace corvanta {

ActionReadExcelOld::ActionReadExcelOld(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kReadExcelOldEntry, saved, parameters)
{
}

} // namespace corvanta
