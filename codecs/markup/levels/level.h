// Describes which repeated elements of a document become rows, and which values become columns.
#pragma once
#include <QString>

#include <vector>

namespace corvanta::markup {

/// One value that is read from every occurrence.
struct LevelItem
{
    QString path;         ///< starts at the occurrence; empty: the occurrence itself
    QString name;         ///< name of the column
    bool tagName = false; ///< read the names of the children instead of the text
    bool operator==(const LevelItem &) const = default;
};

/// The sub-elements of one container are the occurrences of a level.
struct Level
{
    QString initialPath; ///< leads to the container, from the document (first level) or from the
                         ///< occurrence of the level before
    QString subtagName;  ///< name of the occurrences; empty: every sub-element
    std::vector<LevelItem> items;
    bool operator==(const Level &) const = default;
};

} // namespace corvanta::markup
