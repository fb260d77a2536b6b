// The rows of a preview, for a table view; at most EngineRunner::kPreviewRows, as texts.
//
// Threads: the GUI thread.
#pragma once
#include "corvanta/meta_info.h"

#include <QAbstractTableModel>
#include <QStringList>

namespace corvanta {

class RowsModel final : public QAbstractTableModel
{
public:
    using QAbstractTableModel::QAbstractTableModel;

    /// Show other rows. A null string is a missing cell.
    void setRows(const TableSchema &columns, const QVector<QStringList> &rows);

    // Operations of QAbstractTableModel. The heading of a column is its name and its type.
    int rowCount(const QModelIndex &parent) const override;
    int columnCount(const QModelIndex &parent) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    TableSchema m_columns;
    QVector<QStringList> m_rows;
};

} // namespace corvanta
