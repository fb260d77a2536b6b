// The plug-in object of CorvantaPluginWriteReport.
#pragma once
#include "plugin/catalogue.h"

#include <QObject>

class CorvantaWriteReport final : public QObject, public corvanta::CataloguePlugin
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")

public:
    CorvantaWriteReport()
        : CataloguePlugin(corvanta::writeReportCatalogue(), 4.2)
    {
    }
};
