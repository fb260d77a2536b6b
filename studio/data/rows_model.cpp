// The rows stay in the chunks in which they arrived: a cell is found by a binary search over the
// first rows of the chunks, and no row is ever copied.
#include "studio/data/rows_model.h"

#include "corvanta/edit/shown_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

/// The model keeps the chunks, so that the reader may add others at any time.
void RowsModel::setRows(const PinRows *rows)
{
    beginResetModel();
    m_source = rows;
    m_columns = rows->columns;
    m_chunks.clear();
    m_firstRows.clear();
    m_rows = 0;
    for (const RowChunkPtr &chunk : rows->chunks) {
        m_chunks.push_back(chunk);
        m_firstRows.push_back(m_rows);
        m_rows += chunk->rows();
    }
    endResetModel();
}

/// The view keeps its position and selection when rows are added.
void RowsModel::update()
{
    if (m_source->columns != m_columns || m_source->chunks.size() < m_chunks.size()) {
        setRows(m_source);
        return;
    }
    const auto added = static_cast<int>(m_source->rows) - m_rows;
    if (added <= 0) {
        return;
    }
    beginInsertRows({}, m_rows, m_rows + added - 1);
    for (size_t i = m_chunks.size(); i < m_source->chunks.size(); ++i) {
        m_chunks.push_back(m_source->chunks[i]);
        m_firstRows.push_back(m_rows);
        m_rows += m_chunks.back()->rows();
    }
    endInsertRows();
}

size_t RowsModel::chunkOf(int row) const
{
    const auto after = std::upper_bound(m_firstRows.begin(), m_firstRows.end(), row);
    return static_cast<size_t>(after - m_firstRows.begin()) - 1;
}

QStringView RowsModel::cell(int row, int column) const
{
    const size_t chunk = chunkOf(row);
    return m_chunks[chunk]->text(row - m_firstRows[chunk], column);
}

int RowsModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows;
}

int RowsModel::columnCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : static_cast<int>(m_columns.names.size());
}

QVariant RowsModel::data(const QModelIndex &index, int role) const
{
    const QStringView text = cell(index.row(), index.column());
    return role == kMissingRole ? text.isNull()
                                : cellData(text, m_columns.types.at(index.column()), role);
}

QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    return corvanta::headerData(m_columns, section, orientation, role);
}

/// Cells are numbered along the rows, in the order of `columns`. A chunk without the text is
/// skipped as a whole: most cells are never compared.
RowsModel::Place RowsModel::find(const QString &text, const QVector<int> &columns, Place from,
                                 Direction direction) const
{
    const auto width = static_cast<qint64>(columns.size());
    const qint64 cells = width * m_rows;
    const qint64 step = direction == Direction::Forward ? 1 : -1;
    if (text.isEmpty() || cells == 0) {
        return {};
    }
    qint64 at = step > 0 ? cells - 1 : 0; // the cell before the first one to look at
    if (from.row >= 0) {
        at = from.row * width + std::max<qint64>(columns.indexOf(from.column), 0);
    }
    const RowChunk *matching = nullptr; // the last chunk that was found to have the text
    for (qint64 tried = 0; tried < cells; ++tried) {
        at = (at + step + cells) % cells;
        const auto row = static_cast<int>(at / width);
        const size_t chunk = chunkOf(row);
        if (m_chunks[chunk].get() != matching && !m_chunks[chunk]->mayContain(text)) {
            const qint64 first = m_firstRows[chunk] * width;
            const qint64 end = step > 0 ? first + m_chunks[chunk]->rows() * width - 1 : first;
            tried += std::abs(end - at);
            at = end;
            continue;
        }
        matching = m_chunks[chunk].get();
        if (cell(row, columns[at % width]).contains(text, Qt::CaseInsensitive)) {
            return {row, columns[at % width]};
        }
    }
    return {};
}

namespace {

bool isSpecial(QChar c)
{
    return c == u',' || c == u'"' || c == u'\n' || c == u'\r';
}

/// A field of a CSV file. A null text is a missing cell.
QString fieldOf(QStringView text)
{
    // An empty text is quoted too, so that it differs from a missing one.
    const bool isQuoted =
        !text.isNull() && (text.isEmpty() || std::ranges::any_of(text, isSpecial));
    const QString plain = text.toString();
    return isQuoted ? u'"' + QString(plain).replace(u'"', "\"\""_L1) + u'"' : plain;
}

} // namespace

/// Numbers have the digits that read back to the same value, as their cells have.
QString csvOf(const RowsModel &model, const QVector<int> &rows, const QVector<int> &columns)
{
    QString csv;
    const auto addLine = [&](const auto &textOfColumn) {
        for (qsizetype i = 0; i < columns.size(); ++i) {
            csv += (i == 0 ? QString() : u","_s) + fieldOf(textOfColumn(columns[i]));
        }
        csv += u'\n';
    };
    addLine([&](int column) { return model.columnName(column); });
    for (const int row : rows) {
        addLine([&](int column) { return model.cell(row, column); });
    }
    return csv;
}

} // namespace corvanta::studio
