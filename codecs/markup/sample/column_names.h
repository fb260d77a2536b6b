// Gives the columns of a table distinct names.
#pragma once
#include <QStringList>

#include <vector>

namespace corvanta::markup {

/// The parts from which the name of a column is made.
struct ColumnNameParts
{
    /// Of the elements that lead to the value, the last one first; not empty.
    QStringList names;
    /// "[i]", or empty.
    QString suffix;
    /// Number of names in the column's name.
    qsizetype used = 1;
};

/// The names of the columns: the last name of each, with as many names before it as needed to be
/// distinct, joined by "."; where that is not enough, with a number.
QStringList distinctNames(std::vector<ColumnNameParts> columns);

} // namespace corvanta::markup
