// Finds the known name that a user most likely meant, for messages about unknown names.
#pragma once
#include <QString>
#include <QStringList>

namespace corvanta {

/// The name of `known` with the fewest inserted, deleted, replaced or swapped characters, letter
/// case ignored; of several, the one with the longest equal beginning. A name that is the
/// beginning of the other one, with three or more characters, counts as one change. Empty if each
/// needs more than one change and changes of more than a third of the longer name: the user then
/// means something else.
/// Threads: any.
QString nearestName(const QString &name, const QStringList &known);

/// "; the nearest known name is 'NAME'" for the end of a message; empty if there is none.
QString nearestNameHint(const QString &name, const QStringList &known);

/// The reason of a message about a column that the input does not have: the nearest name. Empty
/// without one.
QString missingColumnReason(const QString &name, const QStringList &columns);

} // namespace corvanta
