// Finds and loads the plug-in modules, and keeps a prototype of every action.
//
// A prototype describes its type and makes actions of it; it never runs itself.
#pragma once
#include "corvanta/action_item.h"
#include "corvanta/export.h"

#include <memory>
#include <vector>

class CorvantaPluginInterface;
class QFileInfo;

namespace corvanta {

/// A module file that a registry has found.
struct CORVANTA_EXPORT Module
{
    QString file;         ///< absolute
    double version = 0;   ///< as the module says; 0 if it was refused
    QStringList actions;  ///< the types that the registry has from it
    QStringList unused;   ///< types that an earlier module has, too
    QString problem = {}; ///< why it is not used, as the end of a sentence; empty: it is loaded

    QString name() const; ///< of the file, without its extension
};

/// Threads: one thread fills it, afterwards any thread may read it.
class CORVANTA_EXPORT ActionRegistry
{
public:
    ActionRegistry();
    ~ActionRegistry();

    /// Load the modules of all search folders, each folder in name order. The module with the
    /// host's own actions is the last one. Of several files with one name the first that fits is
    /// loaded. What cannot be loaded is reported as a warning, and so is that there is no module.
    void loadAll();
    /// Where loadAll() looks, in order: the folders of addSearchFolder(), those of the environment
    /// variable CORVANTA_PLUGIN_PATH, corvanta/plugins in the user's data folder, in the folder of
    /// the library CorvantaCore and in ../lib relative to the folder of the program. Absolute
    /// names; not all of them exist.
    static QStringList searchFolders();
    /// Make every registry of the program search `folder` too, before the other folders.
    /// Threads: any.
    static void addSearchFolder(const QString &folder);

    /// Add a prototype of every action of `plugin`, which need not outlive the call. Of two actions
    /// with the same type name the first one is used. Throws what the plug-in throws.
    void add(CorvantaPluginInterface *plugin);
    /// What loadAll() has found, in the order of the search.
    const std::vector<Module> &modules() const { return m_modules; }
    /// The prototype of a type, or null for an unknown type. Owned by the registry.
    ActionItem *prototype(const QString &typeName) const;
    /// All prototypes in the order in which they were added.
    const std::vector<std::unique_ptr<ActionItem>> &prototypes() const { return m_prototypes; }
    /// The names of all types, in that order.
    QStringList typeNames() const;
    /// A new action with the parameters of a saved element; null for an unknown type. `global` may
    /// be null and must outlive the action. Throws std::bad_alloc if there is no memory, and
    /// std::runtime_error if the module has thrown.
    std::unique_ptr<ActionItem> create(const XMLNode &parameters, GlobalParameters *global) const;

private:
    void load(const QString &file);
    void addActionsOf(Module &module);
    const Module *loadedModule(const QFileInfo &file) const;

    std::vector<std::unique_ptr<ActionItem>> m_prototypes;
    std::vector<Module> m_modules;
};

} // namespace corvanta
