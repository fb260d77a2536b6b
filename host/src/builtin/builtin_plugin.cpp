// The catalogue of the host's own actions.
#include "builtin/builtin_plugin.h"

#include "builtin/read_csv.h"
#include "builtin/write_csv.h"

namespace corvanta {

ActionItem *BuiltinPlugin::createAction(int index, unsigned int)
{
    switch (index) {
    case 0:
        return new ActionReadCsv(XMLNode::emptyNode(), nullptr);
    case 1:
        return new ActionWriteCsv(XMLNode::emptyNode(), nullptr);
    default:
        return nullptr;
    }
}

} // namespace corvanta
