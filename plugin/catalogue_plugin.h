// What the plug-in objects of all modules do: they make the actions of a catalogue.
#pragma once
#include "corvanta/plugin_interface.h"
#include "plugin/catalogue.h"

namespace corvanta {

/// Base of a plug-in object. Functions of the interface that the modules do not use return null or
/// do nothing. Threads: see CorvantaPluginInterface.
class CataloguePlugin : public CorvantaPluginInterface
{
public:
    explicit CataloguePlugin(Catalogue catalogue)
        : m_catalogue(catalogue)
    {
    }
    /// A new prototype of the action number `index`, from 0; null when there is none, so that a
    /// host counts the actions by asking until it gets null. Null also when memory is short. The
    /// caller owns the action.
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {} // actions need no state of the module
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }

private:
    Catalogue m_catalogue;
};

} // namespace corvanta
