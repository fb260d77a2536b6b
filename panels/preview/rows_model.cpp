#include "panels/preview/rows_model.h"

#include "corvanta/edit/shown_text.h"

namespace corvanta {

/// Other rows may have other columns, so the views must start again.
void RowsModel::setRows(const TableSchema &columns, const QVector<QStringList> &rows)
{
    beginResetModel();
    m_columns = columns;
    m_rows = rows;
    endResetModel();
}

int RowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_rows.size());
}

int RowsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.names.size());
}

QVariant RowsModel::data(const QModelIndex &index, int role) const
{
    return cellData(m_rows.at(index.row()).at(index.column()), m_columns.types.at(index.column()),
                    role);
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return corvanta::headerData(m_columns, section, orientation, role);
}

} // namespace corvanta
