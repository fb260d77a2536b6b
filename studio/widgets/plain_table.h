// The look and the behaviour that the tables of the editor share.
//
// Threads: the GUI thread.
#pragma once
#include <QString>

class QAbstractItemModel;
class QTableView;

namespace corvanta::studio {

/// Set up a table that is read and not edited: one line per row, whose height follows the font; the
/// Tab key leaves the table. `description` is for screen readers.
void setUpTable(QTableView *table, const QString &name, const QString &description,
                QAbstractItemModel *model);

} // namespace corvanta::studio
