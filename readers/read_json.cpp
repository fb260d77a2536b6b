#include "readers/read_json.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadJSON::ActionReadJSON(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readJSON"), saved, parameters)
{
}

} // namespace corvanta
