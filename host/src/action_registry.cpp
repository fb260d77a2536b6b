// Loads plug-in modules and collects their prototypes.
//
// A type name that exists twice resolves to the action that was added first. The module with the
// host's own actions is therefore the last one.
#include "corvanta/action_registry.h"

#include "base/mapped.h"
#include "corvanta/main_ui.h"
#include "corvanta/plugin_interface.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>

#include <algorithm>
#include <functional>
#include <mutex>
#include <new>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The name of the module with the host's own actions, without its extension.
constexpr QLatin1StringView kOwnModule("CorvantaPluginTables");

bool isOwnModule(const QString &name)
{
    return name.section(u'.', 0, 0) == kOwnModule;
}

/// The names of the modules in a folder, sorted, the host's own one last.
QStringList modulesIn(const QString &folder)
{
    QStringList names = QDir(folder).entryList({u"*.so"_s, u"*.dll"_s}, QDir::Files, QDir::Name);
    std::stable_partition(names.begin(), names.end(), std::not_fn(isOwnModule));
    return names;
}

/// Where the modules of the program are, relative to it.
QString standardFolder()
{
    return QCoreApplication::applicationDirPath() + "/../lib/corvanta/plugins"_L1;
}

/// The folders with modules that any registry has loaded. An editor may have modules of its own,
/// and what runs or checks its graphs loads them too.
class KnownFolders
{
public:
    void add(const QString &folder)
    {
        const std::lock_guard lock(m_mutex);
        if (!m_folders.contains(folder)) {
            m_folders << folder;
        }
    }
    QStringList all() const
    {
        const std::lock_guard lock(m_mutex);
        return m_folders;
    }

private:
    mutable std::mutex m_mutex;
    QStringList m_folders; // canonical
};

KnownFolders &knownFolders()
{
    static KnownFolders folders;
    return folders;
}

void loadModule(const QString &file, ActionRegistry *registry)
{
    // Never unload a module: actions and their icons may exist until the program ends.
    QPluginLoader loader(file);
    loader.setLoadHints(QLibrary::PreventUnloadHint);
    auto *const plugin = qobject_cast<CorvantaPluginInterface *>(loader.instance());
    if (plugin != nullptr) {
        registry->add(plugin);
    } else if (loader.errorString().contains(qt_error_string(ENOMEM))) {
        throw std::bad_alloc(); // its actions would seem to be unknown
    } else {
        MainUI::addLog(MainUI::Warning, u"Warning: cannot load the plug-in '%1': %2\n"_s.arg(
                                            file, loader.errorString()));
    }
}

} // namespace

ActionRegistry::ActionRegistry() = default;
ActionRegistry::~ActionRegistry() = default;

QString ActionRegistry::defaultFolder()
{
    const QString given = qEnvironmentVariable("CORVANTA_PLUGIN_PATH");
    return given.isEmpty() ? standardFolder() : given;
}

void ActionRegistry::loadAll()
{
    const QString folder = defaultFolder();
    QStringList modules = modulesIn(folder);
    loadFolder(folder);
    for (const QString &other : knownFolders().all()) {
        if (other != QDir(folder).canonicalPath()) {
            modules << modulesIn(other);
            loadFolder(other);
        }
    }
    if (std::all_of(modules.begin(), modules.end(), isOwnModule)) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: no module with actions found in the folder '%1' (the environment variable CORVANTA_PLUGIN_PATH names another folder)\n"_s
                .arg(QDir::cleanPath(QDir::current().absoluteFilePath(folder))));
    }
    // The host's own actions do not depend on the folder that the user chooses.
    if (std::none_of(modules.begin(), modules.end(), isOwnModule)) {
        loadModule(QDir(standardFolder()).absoluteFilePath(kOwnModule), this);
    }
}

void ActionRegistry::loadFolder(const QString &folder)
{
    const QDir dir(folder);
    const QStringList modules = modulesIn(folder);
    if (!modules.isEmpty()) {
        knownFolders().add(dir.canonicalPath());
    }
    for (const QString &name : modules) {
        loadModule(dir.absoluteFilePath(name), this);
    }
}

void ActionRegistry::add(CorvantaPluginInterface *plugin)
{
    plugin->initialise();
    for (int i = 0;; ++i) {
        // The interface has no count: the catalogue ends at the first null.
        std::unique_ptr<ActionItem> action(plugin->createAction(i, 0));
        if (!action) {
            // An action that there is the second time was missing for lack of memory.
            if (std::unique_ptr<ActionItem>(plugin->createAction(i, 0))) {
                throw std::bad_alloc();
            }
            return;
        }
        m_prototypes.push_back(std::move(action));
    }
}

ActionItem *ActionRegistry::prototype(const QString &typeName) const
{
    for (const auto &action : m_prototypes) {
        if (typeName == QLatin1StringView(action->getTypeName())) {
            return action.get();
        }
    }
    return nullptr;
}

QStringList ActionRegistry::typeNames() const
{
    return mapped<QStringList>(m_prototypes, [](const auto &action) {
        return QString::fromLatin1(action->getTypeName());
    });
}

std::unique_ptr<ActionItem> ActionRegistry::create(const XMLNode &parameters,
                                                   GlobalParameters *global) const
{
    ActionItem *const type = prototype(parameters.getName());
    if (type == nullptr) {
        return nullptr;
    }
    std::unique_ptr<ActionItem> action(type->newInstance(new XMLNode(parameters), global));
    if (!action) {
        throw std::bad_alloc();
    }
    return action;
}

} // namespace corvanta
