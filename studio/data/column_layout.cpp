// The header of the table has the order, and the model of the summary says which columns are shown.
// Whichever of them the user changes, the other one follows.
#include "studio/data/column_layout.h"

#include "studio/data/rows_model.h"
#include "studio/data/summary_model.h"

#include <QHeaderView>
#include <QMenu>
#include <QTableView>

namespace corvanta::studio {

ColumnLayout::ColumnLayout(QTableView *table, const RowsModel &rows, SummaryModel &summary)
    : m_table(table)
    , m_rows(rows)
    , m_summary(summary)
{
    QHeaderView *const header = table->horizontalHeader();
    header->setSectionsMovable(true);
    header->setContextMenuPolicy(Qt::CustomContextMenu);
    connect(header, &QHeaderView::customContextMenuRequested, this, &ColumnLayout::showMenu);
    connect(header, &QHeaderView::sectionMoved, this, &ColumnLayout::updateOrder);
    connect(&summary, &SummaryModel::shownChanged, this, &ColumnLayout::setShown);
}

/// Also called for a change of a box in the summary.
void ColumnLayout::setShown(int column, bool isShown)
{
    m_table->setColumnHidden(column, !isShown);
    save();
}

void ColumnLayout::updateOrder()
{
    if (m_isRestoring) {
        return;
    }
    QVector<int> order;
    order.reserve(m_rows.columnCount());
    for (int place = 0; place < m_rows.columnCount(); ++place) {
        order << m_table->horizontalHeader()->logicalIndex(place);
    }
    m_summary.setOrder(order);
    save();
}

/// What is only half restored must not replace what is being restored.
void ColumnLayout::save()
{
    if (m_isRestoring) {
        return;
    }
    Saved saved;
    for (int place = 0; place < m_rows.columnCount(); ++place) {
        const int column = m_summary.columnAt(place);
        const QString name = m_rows.columnName(column);
        saved.order << name;
        saved.hidden += m_summary.isShown(column) ? QStringList() : QStringList{name};
    }
    m_saved.insert(m_pin, saved);
}

/// The header and the summary must have the columns of the pin already.
void ColumnLayout::restore(const QString &pin)
{
    m_pin = pin;
    const Saved saved = m_saved.value(pin);
    m_isRestoring = true;
    restoreOrder(saved.order);
    for (int column = 0; column < m_rows.columnCount(); ++column) {
        const bool isShown = !saved.hidden.contains(m_rows.columnName(column));
        m_table->setColumnHidden(column, !isShown);
        m_summary.setShown(column, isShown);
    }
    m_isRestoring = false;
    updateOrder();
}

void ColumnLayout::restoreOrder(const QStringList &names)
{
    QHeaderView *const header = m_table->horizontalHeader();
    int place = 0;
    for (const QString &name : names) {
        // Of equal names the first one that is not at its place yet.
        for (int from = place; from < m_rows.columnCount(); ++from) {
            if (m_rows.columnName(header->logicalIndex(from)) == name) {
                header->moveSection(from, place++);
                break;
            }
        }
    }
}

/// In the order of the header, whose sections may be moved.
QVector<int> ColumnLayout::visibleColumns() const
{
    QVector<int> columns;
    columns.reserve(m_rows.columnCount());
    for (int place = 0; place < m_rows.columnCount(); ++place) {
        const int column = m_table->horizontalHeader()->logicalIndex(place);
        if (!m_table->isColumnHidden(column)) {
            columns << column;
        }
    }
    return columns;
}

/// The header reports the move, which updates the summary.
void ColumnLayout::move(int from, int to)
{
    if (qMin(from, to) >= 0 && qMax(from, to) < m_rows.columnCount()) {
        m_table->horizontalHeader()->moveSection(from, to);
    }
}

void ColumnLayout::showAll()
{
    for (int column = 0; column < m_rows.columnCount(); ++column) {
        m_summary.setShown(column, true);
    }
}

/// A place beyond the last column has only the second entry.
void ColumnLayout::showMenu(QPoint place)
{
    const int column = m_table->horizontalHeader()->logicalIndexAt(place);
    QMenu menu;
    QAction *const hide = menu.addAction(tr("Hide the column"));
    // Without any column there would be no header to show them again.
    hide->setEnabled(column >= 0 && visibleColumns().size() > 1);
    QAction *const all = menu.addAction(tr("Show all columns"));
    const QAction *const chosen = menu.exec(m_table->horizontalHeader()->mapToGlobal(place));
    if (chosen == hide) {
        m_summary.setShown(column, false);
    } else if (chosen == all) {
        showAll();
    }
}

} // namespace corvanta::studio
