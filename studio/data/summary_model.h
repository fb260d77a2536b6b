// The columns of a table with their types, counts and ranges, one row per column.
//
// Threads: the GUI thread.
#pragma once
#include "studio/data/pin_feed.h"

#include <QAbstractTableModel>
#include <QSet>

namespace corvanta::studio {

class SummaryModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, Type, Missing, Distinct, Minimum, Maximum, kColumns };

    using QAbstractTableModel::QAbstractTableModel;

    /// Show another table or its new counts; `rows` is copied. The same columns keep their boxes.
    void setRows(const PinRows &rows);
    /// The order in which the columns are shown, as their numbers; all of them.
    void setOrder(const QVector<int> &order);
    /// The number of the column in a row of this model.
    int columnAt(int row) const { return m_order.value(row, row); }
    /// Check or clear the box of a column, which says whether it is shown.
    void setShown(int column, bool isShown);
    bool isShown(int column) const { return !m_hidden.contains(column); }

    // Operations of QAbstractTableModel.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    bool setData(const QModelIndex &index, const QVariant &value, int role) override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

Q_SIGNALS:
    /// The user, or setShown(), has changed a box.
    void shownChanged(int column, bool isShown);

private:
    QString cellText(int column, int field) const;

    TableSchema m_columns;
    QVector<ColumnSummary> m_summaries;
    QVector<int> m_order;
    QSet<int> m_hidden;
};

} // namespace corvanta::studio
