#include "writers/write_json.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteJSON::ActionWriteJSON(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeJSON"), saved, parameters)
{
}

} // namespace corvanta
