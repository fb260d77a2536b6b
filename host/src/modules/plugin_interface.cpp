#include "corvanta/plugin_interface.h"

#include <exception>

namespace corvanta {

CataloguePlugin::CataloguePlugin(Catalogue catalogue, double version)
    : m_catalogue(catalogue)
    , m_version(version)
{
}

ActionItem *CataloguePlugin::createAction(int index, unsigned int)
{
    const auto number = static_cast<size_t>(index); // negative numbers are beyond the last one, too
    // The host calls this: no exception may leave it.
    try {
        return number < m_catalogue.size()
                   ? m_catalogue[number]->makeAction(XMLNode::emptyNode(), nullptr)
                   : nullptr;
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace corvanta
