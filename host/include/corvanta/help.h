// Opens the help pages of actions and panels.
#pragma once
#include "corvanta/export.h"

#include <QString>

#include <functional>

/// Open the help page `id` (empty: the action has none) at `anchor` (empty: the beginning of the
/// page). Does nothing if the program has set no opener.
CORVANTA_EXPORT void openHelp(const QString &id, const QString &anchor);

/// Shows the help page `id` at `anchor`. Called on the thread that calls openHelp().
using HelpOpener = std::function<void(const QString &id, const QString &anchor)>;

/// Set the function that openHelp() calls. Call before any panel is made; not thread-safe.
CORVANTA_EXPORT void setHelpOpener(HelpOpener opener);
