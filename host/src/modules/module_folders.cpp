#include "modules/module_folders.h"

#include "base/platform/library.h"

#include <QCoreApplication>
#include <QDir>
#include <QStandardPaths>

#include <mutex>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr QLatin1StringView kPluginFolder("corvanta/plugins");

/// Those of the option --plugin-path, and of an editor that has modules of its own.
struct AddedFolders
{
    std::mutex mutex;
    QStringList folders; // guarded by mutex
};

AddedFolders &addedFolders()
{
    static AddedFolders added;
    return added;
}

QStringList foldersOfEnvironment()
{
    return qEnvironmentVariable("CORVANTA_PLUGIN_PATH")
        .split(QDir::listSeparator(), Qt::SkipEmptyParts);
}

/// Those of the user, of the installation and of the program. A host that is installed elsewhere
/// finds the modules next to this library.
QStringList standardFolders()
{
    return {QDir(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
                .filePath(kPluginFolder),
            QDir(platform::folderOfCode(&kPluginFolder)).filePath(kPluginFolder),
            QDir(QCoreApplication::applicationDirPath() + "/../lib"_L1).filePath(kPluginFolder)};
}

} // namespace

QStringList moduleFolders()
{
    AddedFolders &added = addedFolders();
    QStringList folders;
    {
        const std::lock_guard lock(added.mutex);
        folders = added.folders;
    }
    folders += foldersOfEnvironment() + standardFolders();
    for (QString &folder : folders) {
        folder = QDir::cleanPath(QDir::current().absoluteFilePath(folder));
    }
    folders.removeDuplicates();
    return folders;
}

void addModuleFolder(const QString &folder)
{
    AddedFolders &added = addedFolders();
    const std::lock_guard lock(added.mutex);
    added.folders << QDir::current().absoluteFilePath(folder);
}

} // namespace corvanta
