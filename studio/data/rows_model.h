// The rows of a pin for a table view. Their chunks are shared with the reader of the pin.
//
// Threads: the GUI thread.
#pragma once
#include "studio/data/pin_feed.h"

#include <QAbstractTableModel>

namespace corvanta::studio {

class RowsModel final : public QAbstractTableModel
{
    Q_OBJECT

public:
    /// For data(), in addition to the usual roles: whether the cell is missing.
    static constexpr int kMissingRole = Qt::UserRole;

    using QAbstractTableModel::QAbstractTableModel;

    /// Show the rows of another table, which must stay until the next call.
    void setRows(const PinRows *rows);
    /// Show the rows that have been added to the table.
    void update();
    /// A cell of a row that is shown. A null view: it is missing.
    QStringView cell(int row, int column) const;
    QString columnName(int column) const { return m_columns.names[column]; }

    /// A place in the table; the row is -1 for none.
    struct Place
    {
        int row = -1;
        int column = -1;
    };
    /// The next cell after `from`, or before it, that contains a text, ignoring case. `columns` are
    /// searched in their order. At the end of the table the search continues at its beginning.
    enum class Direction { Forward, Backward };
    Place find(const QString &text, const QVector<int> &columns, Place from,
               Direction direction) const;

    // Operations of QAbstractTableModel.
    int rowCount(const QModelIndex &parent = {}) const override;
    int columnCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;

private:
    /// The number of the chunk with a row.
    size_t chunkOf(int row) const;

    const PinRows *m_source = nullptr;
    TableSchema m_columns;
    std::vector<RowChunkPtr> m_chunks;
    std::vector<int> m_firstRows; // of each chunk
    int m_rows = 0;
};

/// The cells of `rows` and `columns` as CSV with a header, as the action writeCSV writes them: a
/// missing cell is an empty field, an empty text is "".
QString csvOf(const RowsModel &model, const QVector<int> &rows, const QVector<int> &columns);

} // namespace corvanta::studio
