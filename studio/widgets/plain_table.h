// The look and the behaviour that the tables of the editor share.
//
// Threads: the GUI thread.
#pragma once
#include <QString>

class QAbstractItemModel;
class QTableView;
class QTreeView;

namespace corvanta::studio {

/// Set up a table that is read and not edited: one line per row, whose height follows the font; the
/// Tab key leaves the table. `description` is for screen readers.
void setUpTable(QTableView *table, const QString &name, const QString &description,
                QAbstractItemModel *model);

/// Fit the width of a column to its texts, at most to `letters`, so that a long name does not hide
/// the other columns.
void fitColumn(QTreeView *tree, int column, int letters);

} // namespace corvanta::studio
