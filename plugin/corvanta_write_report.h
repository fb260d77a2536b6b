// plugin/corvanta_write_report.h
// The one plug-in object of the module.
#pragma once
#include "corvanta/plugin_interface.h"

#include <QObject>

class CorvantaWriteReport final : public QObject, public CorvantaPluginInterface
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid)

public:
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {}
    double getVersion() override { return 4.2; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};
