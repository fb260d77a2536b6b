// Prints rows as an aligned table.
#pragma once
#include "corvanta/meta_info.h"

#include <QString>
#include <QStringList>

/// Number of terminal columns that `text` takes: two for a wide character, none for a combining
/// one.
int displayWidth(const QString &text);

/// Prints to standard output: a terminal or a file. Numbers are aligned right, texts left; a
/// missing cell is blank, an empty text is "". The column widths are those of the first 1,000 rows,
/// which are kept until then. Cells of more than 1,000 characters (40 on a terminal) end in an
/// ellipsis. Columns that do not fit on the terminal are left out and named at the end.
class TablePrinter
{
public:
    explicit TablePrinter(const TableSchema &columns);

    /// Print a row of texts; null strings are missing cells.
    void add(const QStringList &cells);
    /// Print what has been kept. Call after the last row.
    void finish();

private:
    /// The text to print for a cell: escaped, cut, and quoted if it is empty.
    QString shown(const QString &cell) const;
    QStringList shownCells(const QStringList &cells) const;
    /// Keep a row for the widths. The first row that is too many begins the output.
    void hold(const QStringList &texts);
    /// Set m_widths to the widths of the columns that fit on a line, from the rows that are kept.
    void measure();
    /// Choose the widths and print what is kept.
    void begin();
    /// The text with the blanks that fill its column.
    QString aligned(qsizetype column, const QString &cell) const;
    void print(const QStringList &cells);

    TableSchema m_columns;
    int m_lineWidth; ///< 0: no limit
    int m_cellWidth;
    QVector<QStringList> m_held; ///< the names, then rows that are not printed yet
    QVector<int> m_widths;       ///< of the printed columns
    bool m_hasBegun = false;
};
