// <tr><th rowspan=2>city <th colspan=2>people         two header rows, which give the names
// <tr>                   <th>2019 <th>2020            "city", "people / 2019" and "people / 2020"
// <tr><td>Bonn           <td>1    <td>2
#include "codecs/markup/sample/table_header.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace corvanta::markup {

void TableHeader::beginRow(quint32 group, bool isInHead)
{
    if (std::exchange(m_group, group) != group) {
        m_grid.beginGroup();
    }
    m_grid.beginRow();
    m_isInHead = isInHead;
    m_hasCells = false;
}

void TableHeader::addCell(CellSpan span, bool isHeadCell)
{
    const bool isFirst = !std::exchange(m_hasCells, true);
    if (isFirst && keepsRow() && m_rows.size() < kMaxRows) {
        m_rows.push_back({m_isInHead, {}});
    }
    m_rowCount += isFirst ? 1 : 0;
    const quint32 column = m_grid.place(&span);
    if (keepsRow() && m_keptCells < kMaxCells) {
        ++m_keptCells;
        m_rows.back().cells.push_back({column, span, {}, isHeadCell});
    }
}

void TableHeader::addText(QStringView text, bool isSeparate)
{
    QString &cell = m_rows.back().cells.back().text;
    if (cell.size() < kCellChars) {
        cell += isSeparate ? u" "_s : QString();
        cell += text.first(std::min(text.size(), kCellChars));
    }
}

/// A row of th cells; an empty td among them is the corner above names of rows.
bool TableHeader::hasNames(const Row &row, bool isFirst)
{
    const auto isHead = [](const Cell &cell) { return cell.isHead; };
    const auto heads = std::count_if(row.cells.begin(), row.cells.end(), isHead);
    const auto others = static_cast<qsizetype>(row.cells.size()) - heads;
    const bool hasData = std::any_of(row.cells.begin(), row.cells.end(), [](const Cell &cell) {
        return !cell.isHead && !cell.text.trimmed().isEmpty();
    });
    return heads > 0 && !hasData && (isFirst || others < heads);
}

bool TableHeader::hasDigits(const Row &row)
{
    return std::any_of(row.cells.begin(), row.cells.end(), [](const Cell &cell) {
        return std::any_of(cell.text.begin(), cell.text.end(), [](QChar c) { return c.isDigit(); });
    });
}

/// True when the cells of the first row, except possibly the first one, have texts without digits,
/// and either the second row has digits or the first cell is empty, as it is above names of rows.
bool TableHeader::looksLikeNames() const
{
    const std::vector<Cell> &cells = m_rows.front().cells;
    const auto isEmpty = [](const Cell &cell) { return cell.text.trimmed().isEmpty(); };
    const bool isFull = cells.size() > 1 && cells.size() == columns() &&
                        std::none_of(cells.begin() + 1, cells.end(), isEmpty);
    const bool digitsFollow = m_rows.size() > 1 && hasDigits(m_rows[1]);
    return isFull && !hasDigits(m_rows.front()) && (digitsFollow || isEmpty(cells.front()));
}

/// Number of first rows of th cells, with the rows that these cells span.
size_t TableHeader::headCellRows() const
{
    size_t rows = 0;
    size_t end = 0; // of the rows that the cells span
    while (rows < m_rows.size() && (rows < end || hasNames(m_rows[rows], rows == 0))) {
        if (columns() > 1 && hasNames(m_rows[rows], rows == 0)) {
            for (const Cell &cell : m_rows[rows].cells) {
                end = std::max(end, rows + cell.span.rows);
            }
        }
        ++rows;
    }
    return rows;
}

int TableHeader::headerRows() const
{
    if (m_rows.empty()) {
        return 0;
    }
    const auto isBody = [](const Row &row) { return !row.isInHead; };
    const auto inHead = std::find_if(m_rows.begin(), m_rows.end(), isBody) - m_rows.begin();
    const bool hasBody = inHead < m_rowCount;
    if (inHead > 0 && hasBody) {
        return static_cast<int>(inHead);
    }
    const auto rows = static_cast<qint64>(headCellRows());
    if (rows == 0) {
        return looksLikeNames() ? 1 : 0;
    }
    // Without a row of values, only the first row is the header.
    return rows < m_rowCount ? static_cast<int>(rows) : 1;
}

QStringList TableHeader::names() const
{
    QStringList names;
    names.resize(columns());
    const auto rows = std::min(m_rows.size(), static_cast<size_t>(std::max(headerRows(), 1)));
    for (size_t row = 0; row < rows; ++row) {
        for (const Cell &cell : m_rows[row].cells) {
            const QString text = cell.text.simplified();
            const qsizetype end = std::min<qsizetype>(columns(), cell.column + cell.span.columns);
            for (qsizetype column = cell.column; column < end && !text.isEmpty(); ++column) {
                names[column] += names[column].isEmpty() ? text : u" / "_s + text;
            }
        }
    }
    return names;
}

} // namespace corvanta::markup
