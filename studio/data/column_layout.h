// The order and the visibility of the columns of a table, which the user changes in its header or
// in the summary of its columns. Each pin keeps its own as long as this object exists.
//
// Threads: the GUI thread.
#pragma once
#include <QHash>
#include <QObject>
#include <QStringList>
#include <QVector>

class QTableView;

namespace corvanta::studio {

class RowsModel;
class SummaryModel;

class ColumnLayout final : public QObject
{
    Q_OBJECT

public:
    /// `table` shows `rows`; both and the summary must outlive this object.
    ColumnLayout(QTableView *table, const RowsModel &rows, SummaryModel &summary);

    /// Give the columns, which are new, the layout that the pin had before. Columns are found by
    /// their names; new ones come last. `pin` is a text that identifies it.
    void restore(const QString &pin);
    /// The numbers of the visible columns, in their order.
    QVector<int> visibleColumns() const;
    /// Move the column at a place of the order to another place, if there is such a place.
    void move(int from, int to);
    void showAll();

private:
    struct Saved
    {
        QStringList order;
        QStringList hidden;
    };
    void setShown(int column, bool isShown);
    void updateOrder();
    void restoreOrder(const QStringList &names);
    void save();
    void showMenu(QPoint place);

    QTableView *m_table;
    const RowsModel &m_rows;
    SummaryModel &m_summary;
    QString m_pin;
    bool m_isRestoring = false;    // changes of the header are not those of the user
    QHash<QString, Saved> m_saved; // by pin
};

} // namespace corvanta::studio
