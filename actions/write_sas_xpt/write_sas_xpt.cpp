#include "actions/write_sas_xpt/write_sas_xpt.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteSASXPT::ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeSASXPT"), saved, parameters)
{
}

} // namespace corvanta
