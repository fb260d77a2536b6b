// codecs/markup/levels/level.h
// Which repeated elements of a document become rows, and which of their values become columns.
#pragma once
#include <QString>

#include <vector>

namespace corvanta::markup {

/// One value to take from every occurrence.
struct LevelItem
{
    QString path;         ///< from the occurrence; empty: the occurrence itself
    QString name;         ///< of the column
    bool tagName = false; ///< the names of the children instead of the text
    bool operator==(const LevelItem &) const = default;
};

/// The sub-elements of one container. The first level's path begins at the document, a later one's
/// at the occurrence of the level before.
struct Level
{
    QString initialPath;
    QString subtagName; ///< empty: every sub-element
    std::vector<LevelItem> items;
    bool operator==(const Level &) const = default;
};

} // namespace corvanta::markup
