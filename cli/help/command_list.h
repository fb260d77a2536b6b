// The list of the commands: what each accepts, does and prints as help.
//
// Help texts, manual pages, completions and the reference are derived from this list and from the
// options of the commands.
#pragma once
#include "cli/command_line.h"

/// All texts are constants in UTF-8. A paragraph is one line; an empty line is between paragraphs.
struct Command
{
    const char *name;
    CommandOptions (*options)(); ///< without those of all commands; see optionsOf()
    CommandResult<void> (*run)(const CommandLine &line);
    const char *summary; ///< one line for the list of commands
    const char *usage;   ///< one line per form, with arguments in capitals
    const char *description;
    const char *examples;   ///< one command per line; empty: none
    const char *exitStatus; ///< what the statuses mean for this command; empty: as usual
    bool handlesFiles;      ///< the help lists the extensions of files that it reads and writes
};

/// A folder with plug-in modules, or several with colons between them. Of all commands.
inline constexpr const char *kPluginPath = "--plugin-path";

/// What a command accepts, with the options of all commands.
CommandOptions optionsOf(const Command &command);

/// In the order in which help lists them.
std::span<const Command> allCommands();

/// The command of that name; null when there is none.
const Command *findCommand(const QString &name);

/// The fault of an unknown command; it names the nearest one.
corvanta::Fault<ExitStatus> unknownCommand(const QString &name);
