#include "actions/write_sas/write_sas.h"

namespace corvanta {

ActionWriteSAS::ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteSasEntry, saved, parameters)
{
}

} // namespace corvanta
