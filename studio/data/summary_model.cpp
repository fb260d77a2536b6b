// Row i of this model is the column at place i of the table, so that both have one order.
#include "studio/data/summary_model.h"

#include "corvanta/edit/shown_text.h"
#include "studio/data/rows_model.h"

#include <QLocale>

#include <numeric>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

/// A null text, of a column without a value, stays empty; an empty one is visible.
QString shownValue(const QString &text)
{
    return text.isNull() ? QString() : text.isEmpty() ? u"\"\""_s : text.simplified();
}

} // namespace

/// More rows of the same table change only counts and ranges: the selection and the boxes stay.
void SummaryModel::setRows(const PinRows &rows)
{
    const bool isOther = rows.columns.names != m_columns.names;
    if (isOther) {
        beginResetModel();
        m_hidden.clear();
        m_order.resize(rows.columns.names.size());
        std::iota(m_order.begin(), m_order.end(), 0);
    }
    m_columns = rows.columns;
    m_summaries = rows.summaries;
    if (isOther) {
        endResetModel();
    } else if (rowCount() > 0) {
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    }
}

/// Ignores an order of other columns, which is that of a table that is no longer shown.
void SummaryModel::setOrder(const QVector<int> &order)
{
    if (order.size() == m_order.size() && order != m_order) {
        m_order = order;
        Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, kColumns - 1));
    }
}

/// The header of the table and the boxes both end here.
void SummaryModel::setShown(int column, bool isShown)
{
    if (isShown == this->isShown(column)) {
        return;
    }
    if (isShown) {
        m_hidden.remove(column);
    } else {
        m_hidden.insert(column);
    }
    const QModelIndex box = index(static_cast<int>(m_order.indexOf(column)), Name);
    Q_EMIT dataChanged(box, box);
    Q_EMIT shownChanged(column, isShown);
}

int SummaryModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.names.size());
}

int SummaryModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(kColumns);
}

/// Counts have separators of the locale; values are those of the cells.
QString SummaryModel::cellText(int column, int field) const
{
    const ColumnSummary summary = m_summaries.value(column);
    const QLocale locale;
    switch (field) {
    case Name:
        return m_columns.names[column];
    case Type:
        return columnTypeText(m_columns.types[column]);
    case Missing:
        return locale.toString(summary.missing);
    case Distinct:
        return summary.isOverDistinct ? tr("over %1").arg(locale.toString(summary.distinct))
                                      : locale.toString(summary.distinct);
    case Minimum:
        return shownValue(summary.minimum);
    default:
        return shownValue(summary.maximum);
    }
}

QVariant SummaryModel::data(const QModelIndex &index, int role) const
{
    const int column = columnAt(index.row());
    const bool isCount = index.column() == Missing || index.column() == Distinct;
    switch (role) {
    case Qt::DisplayRole:
        return cellText(column, index.column());
    case Qt::ToolTipRole:
        return plainToolTip(cellText(column, index.column()));
    case Qt::CheckStateRole:
        return index.column() == Name ? QVariant(isShown(column) ? Qt::Checked : Qt::Unchecked)
                                      : QVariant();
    case Qt::TextAlignmentRole:
        return QVariant((isCount ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
        return {};
    }
}

/// Only the boxes can be changed.
bool SummaryModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    const bool isCheck = role == Qt::CheckStateRole && index.column() == Name;
    if (isCheck) {
        setShown(columnAt(index.row()), value.toInt() == Qt::Checked);
    }
    return isCheck;
}

Qt::ItemFlags SummaryModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags usual = QAbstractTableModel::flags(index);
    return index.column() == Name ? usual | Qt::ItemIsUserCheckable : usual;
}

QVariant SummaryModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    const bool isTitle = role == Qt::DisplayRole && orientation == Qt::Horizontal;
    const QStringList titles{tr("Column"),   tr("Type"),    tr("Missing"),
                             tr("Distinct"), tr("Minimum"), tr("Maximum")};
    return isTitle ? titles.at(section) : QVariant();
}

} // namespace corvanta::studio
