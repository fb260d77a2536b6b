// The plug-in object that a host gets when it loads the module.
//
// It makes the actions of the catalogue. Functions of the interface that the module does not use
// return null or do nothing.
#pragma once
#include "corvanta/plugin_interface.h"

#include <QObject>

class CorvantaWriteReport final : public QObject, public CorvantaPluginInterface
{
    Q_OBJECT
    Q_INTERFACES(CorvantaPluginInterface)
    Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid)

public:
    /// A new prototype of the action number `index`, from 0; null when there is none, so that a
    /// host counts the actions by asking until it gets null. The caller owns the action.
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {} // actions need no state of the module
    double getVersion() override { return 4.2; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};
