// cli/table_printer.h
// Prints rows as an aligned table for people.
#pragma once
#include "corvanta/meta_info.h"

#include <QString>
#include <QStringList>

#include <cstdio>

/// Text as it can stand on one line of a terminal: control characters, line ends and marks that
/// turn the writing direction become escapes such as \n and \x1b.
QString visibleText(const QString &text);

/// Columns that `text` takes on a terminal: wide characters two, combining ones none.
int displayWidth(const QString &text);

/// Numbers stand right, texts left; a missing cell is blank, an empty text "". The widths are those
/// of the first rows, which are held back until they are known. Very long cells end in an ellipsis,
/// on a terminal long ones; there columns that do not fit are left out and named at the end.
class TablePrinter
{
public:
    TablePrinter(const TableSchema &columns, std::FILE *out);

    /// A row's cells as text; null strings are missing cells.
    void add(const QStringList &cells);
    /// After the last row.
    void finish();

private:
    QString shown(const QString &cell) const;
    void begin();
    void print(const QStringList &cells);

    TableSchema m_columns;
    std::FILE *m_out;
    int m_lineWidth; ///< 0: no limit
    int m_cellWidth;
    QVector<QStringList> m_held; ///< rows and, in front, the names
    QVector<int> m_widths;       ///< of the columns that are printed
    bool m_hasBegun = false;
};
