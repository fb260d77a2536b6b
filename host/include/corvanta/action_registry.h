// Loads the plug-in modules and keeps a prototype of every action.
//
// A prototype describes its type and makes actions of it; it never runs itself.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/export.h"

#include <memory>
#include <vector>

class CorvantaPluginInterface;

namespace corvanta {

/// Threads: one thread fills it, afterwards any thread may read it.
class CORVANTA_EXPORT ActionRegistry
{
public:
    ActionRegistry();
    ~ActionRegistry();

    /// Load every module of the default folder, then those of the other folders that a registry of
    /// this program has loaded. The module with the host's own actions is the last
    /// one; if that folder has none, it is loaded from the folder of the program. A module that
    /// cannot be loaded, and a folder without any, are reported as warnings.
    void loadAll();
    /// Load the modules of one folder in name order, the one with the host's own actions last.
    void loadFolder(const QString &folder);
    /// The environment variable CORVANTA_PLUGIN_PATH, or ../lib/corvanta/plugins relative to the
    /// folder of the program.
    static QString defaultFolder();

    /// Add a prototype of every action of `plugin`, which need not outlive the call. Of two actions
    /// with the same type name the first one is used.
    void add(CorvantaPluginInterface *plugin);
    /// The prototype of a type, or null for an unknown type. Owned by the registry.
    ActionItem *prototype(const QString &typeName) const;
    /// All prototypes in the order in which they were added.
    const std::vector<std::unique_ptr<ActionItem>> &prototypes() const { return m_prototypes; }
    /// The names of all types, in that order.
    QStringList typeNames() const;
    /// A new action with the parameters of a saved element; null for an unknown type. `global` may
    /// be null and must outlive the action. Throws std::bad_alloc if there is no memory.
    std::unique_ptr<ActionItem> create(const XMLNode &parameters, GlobalParameters *global) const;

private:
    std::vector<std::unique_ptr<ActionItem>> m_prototypes;
};

} // namespace corvanta
