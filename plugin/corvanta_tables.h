// The plug-in object of CorvantaPluginTables, the module with the host's own actions. The host
// loads it after all other modules.
#pragma once
#include "plugin/catalogue.h"

#include <QObject>

class CorvantaTables final : public QObject, public corvanta::CataloguePlugin
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")

public:
    CorvantaTables()
        : CataloguePlugin(corvanta::tablesCatalogue(), 1.0)
    {
    }
};
