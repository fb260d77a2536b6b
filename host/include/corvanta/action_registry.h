// corvanta/action_registry.h
// Finds the plug-in modules and knows a prototype of every action.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/export.h"

#include <memory>
#include <vector>

class CorvantaPluginInterface;

namespace corvanta {

/// Threads: filled by one, then read by any.
class CORVANTA_EXPORT ActionRegistry
{
public:
    ActionRegistry();
    ~ActionRegistry();

    /// Load every module of the plug-in folder; the host's own actions come last. A module that
    /// cannot be loaded is reported with addLog() as a warning.
    void loadAll();
    /// Load the modules of one folder.
    void loadFolder(const QString &folder);
    /// CORVANTA_PLUGIN_PATH, or lib/corvanta/plugins beside the program's bin folder.
    static QString defaultFolder();

    void add(CorvantaPluginInterface *plugin);
    /// Null for an unknown type. Owned by the registry.
    ActionItem *prototype(const QString &typeName) const;
    const std::vector<std::unique_ptr<ActionItem>> &prototypes() const { return m_prototypes; }
    /// A working copy; null for an unknown type.
    std::unique_ptr<ActionItem> create(const XMLNode &parameters, GlobalParameters *global) const;

private:
    std::vector<std::unique_ptr<ActionItem>> m_prototypes;
};

} // namespace corvanta
