// Which files can be merged, by their names.
#pragma once
#include "cli/command_line.h"
#include "corvanta/action_item.h"
#include "corvanta/action_registry.h"

#include <memory>

/// The action that joins the parts, which need not exist yet, into `line.arguments[0]`; null for a
/// workbook, to which one run per part adds a sheet. The fault is a usage error: files of these
/// names cannot be merged.
CommandResult<std::unique_ptr<ActionItem>> makeMerge(const CommandLine &line,
                                                     const QStringList &parts,
                                                     const corvanta::ActionRegistry &registry);
