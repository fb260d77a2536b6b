// Chooses the action that reads or writes a file by the extension of the file.
#pragma once
#include "cli/convert/file_arguments.h"
#include "command_line.h"
#include "corvanta/action_registry.h"
#include "corvanta/corvanta_graph.h"
#include "corvanta/file_format.h"

#include <QStringList>

#include <memory>

/// How much of a file is read.
enum class ReadExtent { Whole, FirstRows };

/// A new action for a file, with the settings of its format and then `settings` (NAME=VALUE each;
/// each string of a list may be a setting of its own). The fault is a usage error: no action
/// handles the file's extension, or a setting is invalid.
CommandResult<std::unique_ptr<ActionItem>> makeFileAction(const corvanta::ActionRegistry &registry,
                                                          FileFormat::Use use,
                                                          const FileArgument &file,
                                                          const QStringList &settings,
                                                          ReadExtent extent = ReadExtent::Whole);

/// A new action of the type `type` with `settings`. The fault is a usage error.
CommandResult<std::unique_ptr<ActionItem>> makeAction(const corvanta::ActionRegistry &registry,
                                                      const QString &type,
                                                      const QStringList &settings);
/// The same for a type with a parameter for the file that it writes, which gets `fileName`.
CommandResult<std::unique_ptr<ActionItem>> makeWriter(const corvanta::ActionRegistry &registry,
                                                      const QString &type, const QString &fileName,
                                                      const QStringList &settings);
/// `parameter=VALUE` for each value, as settings of a list.
QStringList settingsOf(const QString &parameter, const QStringList &values);
/// Whether the action has a parameter of this name.
bool hasParameter(const ActionItem &action, const QString &name);

/// Add a copy of the action to a graph. Text in its parameters that looks like a variable is kept
/// literally. The fault is a usage error: a graph cannot contain a name or value.
CommandResult<void> addAction(CorvantaGraph *graph, const QString &id, ActionItem &action);

/// The extensions that some action of this version reads or writes, separated by blanks.
QString knownExtensions(const corvanta::ActionRegistry &registry, FileFormat::Use use);
