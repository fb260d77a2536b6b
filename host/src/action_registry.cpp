// Loads plug-in modules and collects their prototypes.
//
// A type name that exists twice resolves to the action that was added first, so the module's
// actions take precedence over the host's own.
#include "corvanta/action_registry.h"

#include "builtin/builtin_plugin.h"
#include "corvanta/main_ui.h"
#include "corvanta/plugin_interface.h"

#include <QCoreApplication>
#include <QDir>
#include <QPluginLoader>

#include <new>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// The names of the modules in a folder, sorted.
QStringList modulesIn(const QString &folder)
{
    return QDir(folder).entryList({u"*.so"_s, u"*.dll"_s}, QDir::Files, QDir::Name);
}

} // namespace

ActionRegistry::ActionRegistry() = default;
ActionRegistry::~ActionRegistry() = default;

QString ActionRegistry::defaultFolder()
{
    const QString given = qEnvironmentVariable("CORVANTA_PLUGIN_PATH");
    return given.isEmpty() ? QCoreApplication::applicationDirPath() + "/../lib/corvanta/plugins"_L1
                           : given;
}

void ActionRegistry::loadAll()
{
    // The modules first: their actions take precedence.
    const QString folder = defaultFolder();
    loadFolder(folder);
    if (modulesIn(folder).isEmpty()) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: no module with actions found in the folder '%1' (the environment variable CORVANTA_PLUGIN_PATH names another folder)\n"_s
                .arg(QDir::cleanPath(QDir::current().absoluteFilePath(folder))));
    }
    BuiltinPlugin builtin;
    add(&builtin);
}

void ActionRegistry::loadFolder(const QString &folder)
{
    const QDir dir(folder);
    for (const QString &name : modulesIn(folder)) {
        // Never unload a module: actions and their icons may exist until the program ends.
        QPluginLoader loader(dir.absoluteFilePath(name));
        loader.setLoadHints(QLibrary::PreventUnloadHint);
        auto *const plugin = qobject_cast<CorvantaPluginInterface *>(loader.instance());
        if (plugin != nullptr) {
            add(plugin);
        } else if (loader.errorString().contains(qt_error_string(ENOMEM))) {
            throw std::bad_alloc(); // its actions would seem to be unknown
        } else {
            MainUI::addLog(MainUI::Warning, u"Warning: cannot load the plug-in '%1': %2\n"_s.arg(
                                                dir.absoluteFilePath(name), loader.errorString()));
        }
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
    QStringList names;
    for (const auto &action : m_prototypes) {
        names << QString::fromLatin1(action->getTypeName());
    }
    return names;
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
