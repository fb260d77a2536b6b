// merge to a workbook: a sheet for each part.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_registry.h"

class Session;

/// Write the rows of each part, a file of any format that can be read, to a sheet of the new
/// workbook `line.arguments[0]`, which replaces a file of that name when all are written. The fault
/// is a usage error, or the status of the run that failed, after its message.
CommandResult<void> mergeToWorkbook(const CommandLine &line, const QStringList &parts,
                                    const corvanta::ActionRegistry &registry, Session *session);
