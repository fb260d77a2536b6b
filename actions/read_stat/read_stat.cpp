#include "actions/read_stat/read_stat.h"

namespace corvanta {

ActionReadStat::ActionReadStat(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kReadStatEntry, saved, parameters)
{
}

} // namespace corvanta
