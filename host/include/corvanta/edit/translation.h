// Shows panels in the language of the user.
#pragma once
#include "corvanta/export.h"

class QLocale;

namespace corvanta {

/// Translate the texts that are made from now on, if there is a catalogue for the language. A text
/// without a translation stays English. The command line never calls it, so that its messages are
/// English everywhere. Returns whether there is a catalogue. Threads: the GUI thread, before any
/// panel is made.
CORVANTA_EXPORT bool loadTranslation(const QLocale &locale);

} // namespace corvanta
