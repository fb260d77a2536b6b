// Finds the rows of an HTML table that hold the names of its columns.
#pragma once
#include "codecs/markup/tree/span_grid.h"

#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::markup {

/// A table with all spans expanded, as far as it was read. Keeps the texts of its first rows only.
/// Threads: one at a time.
class TableHeader
{
public:
    /// A row begins, in the group of rows `group`. It counts when it gets a cell.
    void beginRow(quint32 group, bool isInHead);
    /// A cell of the row begins.
    void addCell(CellSpan span, bool isHeadCell);
    /// True when the text of the current cell may be part of a name.
    bool usesTexts() const { return m_hasCells && keepsRow() && m_keptCells < kMaxCells; }
    /// A text of the current cell; only with usesTexts(). `isSeparate`: it is not part of the word
    /// before it.
    void addText(QStringView text, bool isSeparate);

    /// Number of rows that have cells.
    qint64 rows() const { return m_rowCount; }
    /// Number of columns, of the widest row.
    quint32 columns() const { return m_grid.width(); }
    /// Number of first rows that hold the names of the columns; less than rows(), except for a
    /// table with one row.
    int headerRows() const;
    /// By column, the texts of the header rows, joined by " / "; of the first row when there is no
    /// header. A cell that spans columns names all of them, one that spans rows is named once.
    QStringList names() const;

private:
    // Bounds of what a table makes the header hold.
    static constexpr size_t kMaxRows = 16;
    static constexpr size_t kMaxCells = 4'000;
    static constexpr qsizetype kCellChars = 100;

    struct Cell
    {
        quint32 column = 0;
        CellSpan span;
        QString text;
        bool isHead = false;
    };
    struct Row
    {
        bool isInHead = false;
        std::vector<Cell> cells;
    };

    bool keepsRow() const { return m_rowCount == static_cast<qint64>(m_rows.size()); }
    static bool hasNames(const Row &row, bool isFirst);
    static bool hasDigits(const Row &row);
    bool looksLikeNames() const;
    size_t headCellRows() const;

    SpanGrid m_grid;
    /// The first ones, with cells.
    std::vector<Row> m_rows;
    qint64 m_rowCount = 0;
    size_t m_keptCells = 0;
    quint32 m_group = 0;
    bool m_isInHead = false;
    bool m_hasCells = false;
};

} // namespace corvanta::markup
