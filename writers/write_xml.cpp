#include "writers/write_xml.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteXML::ActionWriteXML(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeXML"), saved, parameters)
{
}

} // namespace corvanta
