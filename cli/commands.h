// The commands of corvanta: what each accepts, and what it does with its parsed command line.
//
// `xOptions()` is passed to CommandLine::parse(), and its result to `xCommand()`. The fault of a
// command is the exit status; see CommandResult. help/command_list.h lists them.
#pragma once
#include "command_line.h"

// Run a graph file, or only check it.
CommandOptions runOptions();
CommandResult<void> runCommand(const CommandLine &line);

// Run a graph for many inputs, in tasks of a scheduler or of processes.
CommandOptions batchOptions();
CommandResult<void> batchCommand(const CommandLine &line);

CommandOptions checkOptions();
CommandResult<void> checkCommand(const CommandLine &line);

// List the actions, or describe one.
CommandOptions actionsOptions();
CommandResult<void> actionsCommand(const CommandLine &line);

CommandOptions describeOptions();
CommandResult<void> describeCommand(const CommandLine &line);

// List the modules that were found.
CommandOptions pluginsOptions();
CommandResult<void> pluginsCommand(const CommandLine &line);

// Convert a file, print its first rows, its columns, or statistics of its columns.
CommandOptions convertOptions();
CommandResult<void> convertCommand(const CommandLine &line);

// Join files of one format, or write a workbook with a sheet per file.
CommandOptions mergeOptions();
CommandResult<void> mergeCommand(const CommandLine &line);

CommandOptions headOptions();
CommandResult<void> headCommand(const CommandLine &line);

CommandOptions statsOptions();
CommandResult<void> statsCommand(const CommandLine &line);

CommandOptions schemaOptions();
CommandResult<void> schemaCommand(const CommandLine &line);
