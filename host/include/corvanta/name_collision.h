// Checks the columns of a table for equal names.
#pragma once
#include "corvanta/export.h"

#include <QString>
#include <QVector>

class OneRow;
namespace corvanta {
class ActionBase;
}

/// Look for two of `columns` (indexes into `row`) that have exactly the same name. If there are two
/// and `check` is true, log the error, fail `action` and return 1; otherwise return 0. `what` is
/// the file to write, for the message.
CORVANTA_EXPORT char doCheckNameCollision(const OneRow *row, bool check,
                                          corvanta::ActionBase *action, const QVector<int> &columns,
                                          const QString &what);
