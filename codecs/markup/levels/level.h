// Describes which repeated elements of a document become rows, and which values become columns.
#pragma once
#include <QString>
#include <QStringList>

#include <vector>

namespace corvanta::markup {

/// One value that is read from every occurrence.
struct LevelItem
{
    /// Starts at the occurrence; empty: the occurrence itself.
    QString path;
    /// Name of the column.
    QString name;
    /// Read the names of the children instead of the text.
    bool tagName = false;
    /// Read the number of the occurrence in all files, from 1, instead of the text. The path is
    /// empty then.
    bool isNumber = false;
    bool operator==(const LevelItem &) const = default;
};

/// The sub-elements of one container are the occurrences of a level.
struct Level
{
    /// Leads to the container, from the document (first level) or from the occurrence of the level
    /// before.
    QString initialPath;
    /// Name of the occurrences; empty: every sub-element.
    QString subtagName;
    std::vector<LevelItem> items;
    /// Paths, from the occurrence, of what is left out on purpose. Of the first level, a path that
    /// begins with "/" begins at the document: a part between the records, or, if it ends with "/",
    /// all parts on the way to there.
    QStringList leftOut = {};
    /// Of the last level: an outer occurrence without one of this level gives no row.
    bool isRequired = false;
    bool operator==(const Level &) const = default;
};

} // namespace corvanta::markup
