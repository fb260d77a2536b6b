// Checks the columns of a table for equal names.
#include "corvanta/name_collision.h"

#include "corvanta/action_item.h"
#include "corvanta/main_ui.h"

#include <QSet>

using namespace Qt::StringLiterals;

char doCheckNameCollision(const OneRow *row, bool check, ActionItem *action,
                          const QVector<int> &columns, const QString &what)
{
    QSet<QString> seen;
    for (const int column : columns) {
        const QString name = row->colName(column);
        if (check && seen.contains(name)) {
            MainUI::addLog(
                MainUI::Error,
                u"Error: cannot write '%1': two columns are named '%2'\n"_s.arg(what, name));
            // The caller is an action's run function, so there is a run.
            action->m_control->runStatus = RunControl::Failed;
            action->m_errorFlag = 1;
            return 1;
        }
        seen.insert(name);
    }
    return 0;
}
