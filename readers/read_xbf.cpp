#include "readers/read_xbf.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadXBF::ActionReadXBF(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("ReadXBF"), saved, parameters)
{
}

} // namespace corvanta
