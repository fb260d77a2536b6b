// The plug-in object of the host's own actions, which are part of the host library.
#pragma once
#include "corvanta/plugin_interface.h"

namespace corvanta {

/// Stateless; see CorvantaPluginInterface. Its actions come after those of the modules.
class BuiltinPlugin final : public CorvantaPluginInterface
{
public:
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {}
    double getVersion() override { return 1.0; }
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

} // namespace corvanta
