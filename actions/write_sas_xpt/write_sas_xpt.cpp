#include "actions/write_sas_xpt/write_sas_xpt.h"

namespace corvanta {

ActionWriteSASXPT::ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteSasXptEntry, saved, parameters)
{
}

} // namespace corvanta
