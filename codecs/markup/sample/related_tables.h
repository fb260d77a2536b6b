// The tables of a document as a database would have them: one per repeated element, joined by keys.
#pragma once
#include "codecs/markup/levels/level.h"

#include <QString>

#include <vector>

namespace corvanta::markup {

/// A repeated element with the values that are not in other repeated elements.
struct RelatedTable
{
    /// Distinct among the tables; empty for the records of a document without names.
    QString name;
    /// Of the element, from the document.
    QString path;
    /// Number of rows in the sample.
    qint64 rows = 0;
    /// Index of the table whose records contain those of this one; -1: none.
    int parent = -1;
    /// Outermost first, one per repeated element on the path. Only the last one has items.
    std::vector<Level> levels;
    /// Of the last level: the item that looks like an identifier and is in all records of the
    /// sample. Without a name: there is none.
    LevelItem key;
    /// Its records, or those that contain them, are members of an object, which have names.
    bool namesAreData = false;
};

/// The levels of table `index` with the column that joins it to its parent: the key of the parent
/// if `areKeys` of it, else the number of the parent's record. A table with children and without a
/// key has its own number too.
std::vector<Level> joinedLevels(const std::vector<RelatedTable> &tables, size_t index,
                                const std::vector<bool> &areKeys);

} // namespace corvanta::markup
