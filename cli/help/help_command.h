// help: prints what the list of commands says, as text or as JSON.
#pragma once
#include "cli/help/command_list.h"

/// Whether the word asks for help: "help", "--help" or "-h".
bool isHelp(const QString &word);

/// Print the list of commands, or the help of the command that `words` names. With --json all of it
/// is one JSON object, from which the documentation is generated. The fault is a usage error.
CommandResult<void> help(const QStringList &words);
