// Checks the columns of a table for equal names.
#include "corvanta/name_collision.h"

#include "corvanta/action_base.h"

#include <unordered_set>

using namespace Qt::StringLiterals;

char doCheckNameCollision(const OneRow *row, bool check, corvanta::ActionBase *action,
                          const QVector<int> &columns, const QString &what)
{
    std::unordered_set<QString> seen;
    for (const int column : columns) {
        const QString name = row->colName(column);
        if (check && seen.contains(name)) {
            action->fail(
                u"Error: cannot write '%1': two columns are named '%2'; uniqueNames='1' of readCSV (convert: --reader uniqueNames=1) numbers them\n"_s
                    .arg(what, name));
            return 1;
        }
        seen.insert(name);
    }
    return 0;
}
