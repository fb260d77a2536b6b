// The interface of a plug-in module.
//
// A module is a shared library in a plug-in folder (ActionRegistry::searchFolders) whose Qt plug-in
// object implements this interface. It is never unloaded. Its metadata names the plug-in ABI that
// it is built for, or else the host refuses it:
//
//     Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")
//
// A module with a list of entries needs no more than this:
//
//     class MyModule final : public QObject, public corvanta::CataloguePlugin
//     {
//         Q_OBJECT
//         Q_INTERFACES(CorvantaPluginInterface)
//         Q_PLUGIN_METADATA(IID CorvantaPluginInterface_iid FILE "corvanta/plugin_abi.json")
//
//     public:
//         MyModule() : CataloguePlugin(kEntries, 1.0) {}
//     };
//
// Threads: one at a time.
#pragma once
#include "corvanta/action_entry.h"
#include "corvanta/export.h"
#include "corvanta/xml_node.h"

#include <QtPlugin>

#include <span>

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

namespace corvanta {

/// The actions of a module. Hosts ask for them by their number, so a new one goes to the end.
using Catalogue = std::span<const ActionEntry *const>;

/// Makes the actions of a catalogue. Functions of the interface that hosts do not use return null
/// or do nothing.
class CORVANTA_EXPORT CataloguePlugin : public CorvantaPluginInterface
{
public:
    /// `catalogue` is a constant of the module. `version` is that of the module.
    CataloguePlugin(Catalogue catalogue, double version);
    /// A new prototype of the action number `index`, from 0; null when there is none, so that a
    /// host counts the actions by asking until it gets null. Null also when memory is short. The
    /// caller owns the action.
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {} // actions need no state of the module
    double getVersion() override { return m_version; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }

private:
    Catalogue m_catalogue;
    double m_version;
};

} // namespace corvanta
