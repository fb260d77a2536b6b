// The plug-in object of the host's own actions, which are part of the host library. They go through
// the same interface as those of modules, so that a registry has one way to add actions.
#pragma once
#include "corvanta/plugin_interface.h"

namespace corvanta {

/// Stateless; see CorvantaPluginInterface. Its actions come after those of the modules.
class BuiltinPlugin final : public CorvantaPluginInterface
{
public:
    /// 0: readCSV, 1: writeCSV. Throws std::bad_alloc if there is no memory.
    ActionItem *createAction(int index, unsigned int reserved) override;
    void initialise() override {}
    double getVersion() override { return 1.0; }
    // Reserved by the interface.
    void *getExtra1() override { return nullptr; }
    void *getExtra2() override { return nullptr; }
    void *createActionFromNode(XMLNode) override { return nullptr; }
};

} // namespace corvanta
