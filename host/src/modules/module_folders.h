// The folders in which the host looks for modules.
#pragma once
#include <QStringList>

namespace corvanta {

/// The search path of ActionRegistry::loadAll(), in order; see ActionRegistry::searchFolders().
QStringList moduleFolders();
/// Put `folder` at the end of the folders that are searched before all others. Threads: any.
void addModuleFolder(const QString &folder);

} // namespace corvanta
