// The interface of a plug-in module.
//
// A module is a shared library in a plug-in folder (ActionRegistry::searchFolders) whose Qt plug-in
// object implements this interface. It is never unloaded. Its metadata names the plug-in ABI that
// it is built for, or else the host refuses it:
//
//     Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")
//
// Threads: one at a time.
#pragma once
#include "corvanta/xml_node.h"

#include <QtPlugin>

class ActionItem;

/// Implemented by the one plug-in object of a module. The order of the operations is fixed.
class CorvantaPluginInterface
{
public:
    virtual ~CorvantaPluginInterface() = default;
    /// A new prototype of the action number `index`, from 0; null beyond the last. The second
    /// argument is not used. The caller owns the object.
    virtual ActionItem *createAction(int index, unsigned int reserved) = 0;
    /// Called once, before the first createAction().
    virtual void initialise() = 0;
    virtual double getVersion() = 0; ///< of the module
    // Reserved; null.
    virtual void *getExtra1() = 0;
    virtual void *getExtra2() = 0;
    virtual void *createActionFromNode(XMLNode node) = 0;
};

#define CorvantaPluginInterface_iid "CorvantaPluginInterface/1.0"
Q_DECLARE_INTERFACE(CorvantaPluginInterface, CorvantaPluginInterface_iid)
