// Chooses the action that reads or writes a file by the extension of the file.
#pragma once
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/file_format.h"

#include <QStringList>

#include <memory>

/// A new action for the file `fileName`, with the settings of its format and then `settings`
/// (NAME=VALUE each; each string of a list may be a setting of its own). Returns null and fills
/// `problem` when no action handles the file's extension or when a setting is invalid.
std::unique_ptr<ActionItem> makeFileAction(const corvanta::ActionRegistry &registry,
                                           FileFormat::Use use, const QString &fileName,
                                           const QStringList &settings, QString *problem);

/// Add a copy of the action to a graph. Text in its parameters that looks like a variable is kept
/// literally. Returns false and fills `problem` when a graph cannot hold a name or value.
bool addAction(CorvantaGraph *graph, const QString &id, ActionItem &action, QString *problem);

/// The extensions that some action reads or writes, separated by blanks.
QString knownExtensions(const corvanta::ActionRegistry &registry, FileFormat::Use use);
