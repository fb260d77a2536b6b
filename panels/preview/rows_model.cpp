#include "panels/preview/rows_model.h"

#include <QFont>

using namespace Qt::StringLiterals;

namespace corvanta {

namespace {

constexpr qsizetype kCellChars = 200; // a cell may hold a whole document

/// In words, because users need not know the letters of the types.
QString typeText(const MetaInfo &type)
{
    switch (type.type()) {
    case MetaInfo::Float:
        return RowsModel::tr("number");
    case MetaInfo::Key:
        return RowsModel::tr("key");
    case MetaInfo::Unknown:
        break;
    }
    return RowsModel::tr("text");
}

} // namespace

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

/// Italics distinguish a missing value from the text "missing".
QVariant RowsModel::data(const QModelIndex &index, int role) const
{
    const QString text = m_rows[index.row()].value(index.column());
    const bool isNumber = m_columns.types.value(index.column()).type() != MetaInfo::Unknown;
    switch (role) {
    case Qt::DisplayRole:
    case Qt::ToolTipRole:
        return text.isNull() ? tr("missing") : text.left(kCellChars);
    case Qt::FontRole: {
        QFont font;
        font.setItalic(text.isNull());
        return font;
    }
    case Qt::TextAlignmentRole:
        return QVariant((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
    default:
        return {};
    }
}

/// The type has a line of its own, so that the column stays as narrow as its name.
QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
        return {};
    }
    return orientation == Qt::Vertical ? QVariant(section + 1)
                                       : QVariant(m_columns.names.value(section) + u'\n' +
                                                  typeText(m_columns.types.value(section)));
}

} // namespace corvanta
