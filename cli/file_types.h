// cli/file_types.h
// Which action reads and which one writes files of an extension, and the actions made for them.
#pragma once
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"

#include <QStringList>

#include <memory>

enum class FileUse { Read, Write };

/// An action on a file, with `settings` (NAME=VALUE each; an own line of a list may be given by its
/// own). Null, and `problem` filled, when there is no such action for the file's extension or a
/// setting is none of its parameters.
std::unique_ptr<ActionItem> makeFileAction(const corvanta::ActionRegistry &registry, FileUse use,
                                           const QString &fileName, const QStringList &settings,
                                           QString *problem);

/// Put the action, as it is, into a graph. What looks like a variable in its parameters stands for
/// itself. False, and `problem` filled, when a graph cannot hold it.
bool addAction(CorvantaGraph *graph, const QString &id, ActionItem &action, QString *problem);

/// Extensions that have such an action, for the help.
QString knownExtensions(FileUse use);
