#include "actions/read_stat/read_stat.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadStat::ActionReadStat(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readStat"), saved, parameters)
{
}

} // namespace corvanta
