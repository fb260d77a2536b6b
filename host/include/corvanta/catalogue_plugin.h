// A plug-in object for a list of entries, for modules that need nothing else of the interface:
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
#pragma once
#include "corvanta/action_entry.h"
#include "corvanta/export.h"
#include "corvanta/plugin_interface.h"

#include <span>

namespace corvanta {

/// The actions of a module. Hosts ask for them by their number, so a new one goes to the end.
using Catalogue = std::span<const ActionEntry *const>;

/// Makes the actions of a catalogue. Functions of the interface that hosts do not use return null
/// or do nothing. Threads: see CorvantaPluginInterface.
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
