#include "actions/write_sas/write_sas.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteSAS::ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeSAS"), saved, parameters)
{
}

} // namespace corvanta
