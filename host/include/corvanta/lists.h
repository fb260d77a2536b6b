// Helpers of panels and actions for lists and texts. Threads: any.
#pragma once
#include "corvanta/export.h"

#include <QString>
#include <QStringList>

/// The first `maxTexts` texts in single quotes, separated by a comma and a blank, with ", ..."
/// appended if there are more.
CORVANTA_EXPORT QString stringFromStringList(const QStringList &list, int maxTexts);

/// The words of a constant text (Latin-1) that blanks separate, as in ActionEntry and FileFormat.
CORVANTA_EXPORT QStringList wordsOf(const char *text);

/// A copy of `text` with its own memory; null for a null string.
CORVANTA_EXPORT QString detach(const QString &text);

/// Sort keys[from] to keys[to], both inclusive, ascending and stable, and move the values of the
/// same indexes along with them.
CORVANTA_EXPORT void sortIntInt(int *keys, int *values, int from, int to);
