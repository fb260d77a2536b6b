// convert to a folder: one CSV file per table of the input.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_registry.h"

class Session;

/// Whether the last argument names a folder: it ends in "/".
bool isFolderTarget(const CommandLine &line);

/// Write each table of the input to a file of the folder, which is created. With --print-graph the
/// graph is printed instead. The fault is a usage error, or kFailed after a message.
CommandResult<void> convertTables(const CommandLine &line, const corvanta::ActionRegistry &registry,
                                  Session *session);
