#include "readers/read_xml.h"

#include "plugin/catalogue.h"

using namespace Qt::StringLiterals;

namespace corvanta {

ActionReadXML::ActionReadXML(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readXML"), saved, parameters)
{
    const bool isHtml =
        m_params.fileName.endsWith(".html"_L1) || m_params.fileName.endsWith(".htm"_L1);
    if (isHtml && isNewFile(saved)) {
        applyHtmlDefaults(m_params);
        paramTable().read(m_params, saved);
    }
}

} // namespace corvanta
