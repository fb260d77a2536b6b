// The commands of corvanta: what each accepts, and what it does with its parsed command line.
#pragma once
#include "command_line.h"

CommandOptions runOptions();
CommandResult<void> runCommand(const CommandLine &line);

CommandOptions checkOptions();
CommandResult<void> checkCommand(const CommandLine &line);

CommandOptions actionsOptions();
CommandResult<void> actionsCommand(const CommandLine &line);

CommandOptions describeOptions();
CommandResult<void> describeCommand(const CommandLine &line);

CommandOptions convertOptions();
CommandResult<void> convertCommand(const CommandLine &line);

CommandOptions headOptions();
CommandResult<void> headCommand(const CommandLine &line);

CommandOptions schemaOptions();
CommandResult<void> schemaCommand(const CommandLine &line);
