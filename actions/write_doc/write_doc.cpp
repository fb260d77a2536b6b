#include "actions/write_doc/write_doc.h"

namespace corvanta {

ActionWriteDoc::ActionWriteDoc(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteDocEntry, saved, parameters)
{
}

} // namespace corvanta
