// check --template: lists the markers and chart tags of an Office template.
#pragma once
#include "command_line.h"

/// Print what the actions can fill in the template, as lines or as one JSON array. Something that a
/// run would not find has its remedy. The fault is kUsage for a file that cannot be read as a
/// template, which is reported.
CommandResult<void> checkTemplate(const QString &file, bool asJson);
