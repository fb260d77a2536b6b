// The commands of corvanta. Each takes the words after its name.
#pragma once
#include "command_line.h"

CommandResult<void> runCommand(const QStringList &words);
CommandResult<void> checkCommand(const QStringList &words);
CommandResult<void> actionsCommand(const QStringList &words);
CommandResult<void> describeCommand(const QStringList &words);
CommandResult<void> convertCommand(const QStringList &words);
CommandResult<void> headCommand(const QStringList &words);
CommandResult<void> schemaCommand(const QStringList &words);
