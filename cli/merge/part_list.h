// The files that "merge" joins.
#pragma once
#include "cli/command_line.h"

/// The arguments after the output, then the lines of the list of --parts-from ("-": standard
/// input), or what the batch in this folder has written. A pattern with * or ? stands for the files
/// that it matches, sorted by name, unless it is the name of a file. The fault is a usage error: a
/// list that cannot be read or is empty, no part, a part that is named twice, or one that is the
/// output; kFailed: the batch is not done, or has written nothing.
CommandResult<QStringList> readParts(const CommandLine &line);
