#include "studio/widgets/plain_table.h"

#include <QHeaderView>
#include <QTableView>
#include <QTreeView>

namespace corvanta::studio {

void setUpTable(QTableView *table, const QString &name, const QString &description,
                QAbstractItemModel *model)
{
    constexpr int kRowMargin = 6; // pixels
    table->setObjectName(name);
    table->setAccessibleName(description);
    table->setModel(model);
    table->setEditTriggers(QAbstractItemView::NoEditTriggers);
    table->setTabKeyNavigation(false); // otherwise the keyboard cannot leave the table
    table->setWordWrap(false);
    table->setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
    // A fixed height: to measure each of a million rows would take minutes.
    table->verticalHeader()->setDefaultSectionSize(table->fontMetrics().lineSpacing() + kRowMargin);
    table->horizontalHeader()->setDefaultAlignment(Qt::AlignLeft | Qt::AlignVCenter);
    table->horizontalHeader()->setHighlightSections(false);
}

void fitColumn(QTreeView *tree, int column, int letters)
{
    tree->resizeColumnToContents(column);
    const int most = letters * tree->fontMetrics().averageCharWidth();
    tree->setColumnWidth(column, qMin(tree->columnWidth(column), most));
}

} // namespace corvanta::studio
