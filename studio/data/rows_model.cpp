// The rows stay in the chunks in which they arrived: a cell is found by a binary search over the
// first rows of the chunks, and no row is ever copied.
#include "studio/data/rows_model.h"

#include <QColor>
#include <QFont>
#include <QGuiApplication>
#include <QPalette>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace corvanta::studio {

namespace {

constexpr qsizetype kShownUnits = 200;    // of a cell
constexpr qsizetype kToolTipUnits = 2000; // of a cell

/// A text on one line, with signs for line ends.
QString oneLine(QStringView text)
{
    QString line = text.left(kShownUnits).toString();
    line.replace(u"\r\n"_s, u"\u21b5"_s).replace(u'\n', u'\u21b5').replace(u'\r', u'\u21b5');
    return text.size() > kShownUnits ? line + u'\u2026' : line;
}

/// Between the colours of texts and of the background, readable on both dark and light ones.
QColor quietColor()
{
    const QPalette palette = QGuiApplication::palette();
    const QColor text = palette.color(QPalette::Text);
    const QColor base = palette.color(QPalette::Base);
    constexpr int kPartOfText = 7; // of 10
    const auto mix = [](int a, int b) { return (kPartOfText * a + (10 - kPartOfText) * b) / 10; };
    return {mix(text.red(), base.red()), mix(text.green(), base.green()),
            mix(text.blue(), base.blue())};
}

/// A cell for people. A null view: it is missing.
QString shownText(QStringView text)
{
    return text.isNull() ? RowsModel::tr("missing") : text.isEmpty() ? u"\"\""_s : oneLine(text);
}

QFont italic()
{
    QFont font;
    font.setItalic(true);
    return font;
}

/// Digits of equal value are below each other.
QVariant alignmentOf(const MetaInfo &type)
{
    const bool isNumber = type.type() != MetaInfo::Unknown;
    return QVariant((isNumber ? Qt::AlignRight : Qt::AlignLeft) | Qt::AlignVCenter);
}

} // namespace

QString typeNameOf(const MetaInfo &type)
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

/// What is shown of a cell, and its font and colour, depend on whether it is missing or empty; a
/// text that reads "missing" is upright.
QVariant RowsModel::data(const QModelIndex &index, int role) const
{
    const QStringView text = cell(index.row(), index.column());
    switch (role) {
    case Qt::DisplayRole:
        return shownText(text);
    case Qt::ToolTipRole:
        // As plain text: a cell may contain what looks like markup.
        return text.size() > kShownUnits ? text.left(kToolTipUnits).toString().toHtmlEscaped()
                                         : QVariant();
    case Qt::FontRole:
        return text.isEmpty() ? italic() : QVariant();
    case Qt::ForegroundRole:
        return text.isEmpty() ? quietColor() : QVariant();
    case Qt::TextAlignmentRole:
        return alignmentOf(m_columns.types[index.column()]);
    case kMissingRole:
        return text.isNull();
    default:
        return {};
    }
}

/// Two lines: the name and the type. Rows count from 1.
QVariant RowsModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    if (role != Qt::DisplayRole && role != Qt::ToolTipRole) {
        return {};
    }
    return orientation == Qt::Vertical
               ? QVariant(section + 1)
               : QVariant(columnName(section) + u'\n' + typeNameOf(m_columns.types[section]));
}

/// Cells are numbered along the rows, in the order of `columns`. A chunk without the text is
/// skipped as a whole: most cells are never looked at.
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
