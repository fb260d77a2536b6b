// Loads plug-in modules and collects their prototypes.
//
// A type name that exists twice resolves to the action that was added first. The module with the
// host's own actions is therefore the last one.
#include "corvanta/action_registry.h"

#include "base/mapped.h"
#include "corvanta/lists.h"
#include "corvanta/main_ui.h"
#include "corvanta/plugin_interface.h"
#include "modules/module_file.h"
#include "modules/module_folders.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <functional>
#include <new>
#include <stdexcept>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

/// More actions than any module has: one that never returns null is refused.
constexpr int kMaxActions = 10000;

/// The module with the host's own actions.
bool isOwnModule(const QString &file)
{
    return QFileInfo(file).baseName() == "CorvantaPluginTables"_L1;
}

/// All module files of the search path, the host's own one last.
QStringList moduleFiles()
{
    QStringList files;
    for (const QString &folder : moduleFolders()) {
        const QDir dir(folder);
        const QStringList names = dir.entryList({u"*.so"_s, u"*.dll"_s}, QDir::Files, QDir::Name);
        for (const QString &name : names) {
            files << dir.absoluteFilePath(name);
        }
    }
    std::stable_partition(files.begin(), files.end(), std::not_fn(isOwnModule));
    return files;
}

/// An action of a module of others has thrown.
struct CannotMakeAction : std::runtime_error
{
    CannotMakeAction(const QString &type, const std::string &why)
        : std::runtime_error(u"cannot make the action '%1': "_s.arg(type).toStdString() + why)
    {
    }
};

QString nameOfThrown(const std::exception &error)
{
    return u"it failed while it was loaded: %1"_s.arg(QString::fromUtf8(error.what()));
}

} // namespace

QString Module::name() const
{
    return QFileInfo(file).completeBaseName();
}

ActionRegistry::ActionRegistry() = default;
ActionRegistry::~ActionRegistry() = default;

QStringList ActionRegistry::searchFolders()
{
    return moduleFolders();
}

void ActionRegistry::addSearchFolder(const QString &folder)
{
    addModuleFolder(folder);
}

void ActionRegistry::loadAll()
{
    const QStringList files = moduleFiles();
    for (const QString &file : files) {
        const Module *const other = loadedModule(QFileInfo(file));
        if (other == nullptr) {
            load(file);
        } else if (QFileInfo(other->file).canonicalFilePath() !=
                   QFileInfo(file).canonicalFilePath()) {
            m_modules.push_back(
                {.file = file, .problem = u"'%1' is used instead"_s.arg(other->file)});
        }
    }
    if (std::all_of(files.begin(), files.end(), isOwnModule)) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: no module with actions found in the folders %1 (the option --plugin-path and the environment variable CORVANTA_PLUGIN_PATH add folders)\n"_s
                .arg(stringFromStringList(moduleFolders(), 10)));
    }
}

/// The module that is used instead of the file: one of its name from an earlier folder, or the same
/// file under another name, such as a link; null if there is none.
const Module *ActionRegistry::loadedModule(const QFileInfo &file) const
{
    const auto found = std::find_if(m_modules.begin(), m_modules.end(), [&](const Module &module) {
        const QFileInfo other(module.file);
        return module.problem.isEmpty() && (other.fileName() == file.fileName() ||
                                            other.canonicalFilePath() == file.canonicalFilePath());
    });
    return found == m_modules.end() ? nullptr : &*found;
}

/// Loads a module, or adds it as one that is refused.
void ActionRegistry::load(const QString &file)
{
    Module module{.file = file};
    const size_t prototypes = m_prototypes.size();
    try {
        addActionsOf(module);
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        module.problem = nameOfThrown(error);
    } catch (...) {
        module.problem = u"it failed while it was loaded"_s;
    }
    if (!module.problem.isEmpty()) {
        m_prototypes.resize(prototypes);
        MainUI::addLog(MainUI::Warning,
                       u"Warning: cannot load the plug-in '%1': %2\n"_s.arg(file, module.problem));
    }
    if (!module.unused.isEmpty()) {
        MainUI::addLog(
            MainUI::Warning,
            u"Warning: the plug-in '%1' has actions with the names of others, which are used instead: %2\n"_s
                .arg(file, stringFromStringList(module.unused, 10)));
    }
    m_modules.push_back(std::move(module));
}

/// Opens the file of `module` and adds its actions, those with unused names only.
void ActionRegistry::addActionsOf(Module &module)
{
    const auto opened = openModule(module.file);
    if (!opened) {
        module.problem = opened.fault().detail;
        return;
    }
    const QStringList known = typeNames();
    add(*opened);
    const QStringList added = typeNames().mid(known.size());
    const auto first = m_prototypes.begin() + static_cast<std::ptrdiff_t>(known.size());
    m_prototypes.erase(std::remove_if(first, m_prototypes.end(),
                                      [&](const auto &action) {
                                          return known.contains(
                                              QLatin1StringView(action->getTypeName()));
                                      }),
                       m_prototypes.end());
    for (const QString &type : added) {
        (known.contains(type) ? module.unused : module.actions) << type;
    }
    module.version = (*opened)->getVersion();
}

void ActionRegistry::add(CorvantaPluginInterface *plugin)
{
    plugin->initialise();
    for (int i = 0; i < kMaxActions; ++i) {
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
    throw std::length_error("its list of actions does not end");
}

ActionItem *ActionRegistry::prototype(const QString &typeName) const
{
    const auto found = std::ranges::find_if(m_prototypes, [&](const auto &action) {
        return typeName == QLatin1StringView(action->getTypeName());
    });
    return found == m_prototypes.end() ? nullptr : found->get();
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
    std::unique_ptr<ActionItem> action;
    try {
        action.reset(type->newInstance(new XMLNode(parameters), global));
    } catch (const std::bad_alloc &) {
        throw;
    } catch (const std::exception &error) {
        throw CannotMakeAction(parameters.getName(), error.what());
    } catch (...) {
        throw CannotMakeAction(parameters.getName(), "unknown failure");
    }
    if (!action) {
        throw std::bad_alloc();
    }
    return action;
}

} // namespace corvanta
