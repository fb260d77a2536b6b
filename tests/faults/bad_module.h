// The plug-in object of the module in bad_module.cpp.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/plugin_interface.h"

#include <QObject>

class BadModule final : public QObject, public CorvantaPluginInterface
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")

public:
    BadModule();
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override;
    double getVersion() override { return 1.0; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};
