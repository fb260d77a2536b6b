#include "actions/write_doc/write_doc.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteDoc::ActionWriteDoc(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeDoc"), saved, parameters)
{
}

} // namespace corvanta
