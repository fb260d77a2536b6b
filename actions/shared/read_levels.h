// readers/levels.h
// The levels of the JSON and XML readers: which elements repeat, and what is taken from each
// occurrence.
//
// Level n+1 is searched inside an occurrence of level n, so their cells repeat on the rows of the
// inner one.
#pragma once
#include "codecs/markup/levels/level.h"
#include "corvanta/action_item.h"
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

/// One output column, an `e` element.
using ReadItem = markup::LevelItem;
/// One repeated element, a `Level` element.
using ReadLevel = markup::Level;

/// The levels of an action's element. Its children are all levels when the first one is called
/// `Level`; else the element itself is the one level. Empty when nothing is said.
std::vector<ReadLevel> readLevelsFromXml(const XMLNode &action);
void saveReadLevels(const std::vector<ReadLevel> &levels, std::wostream &out);

/// The levels with the graph's variables put into paths and names, all trimmed. An item without a
/// name gets its path for a name.
std::vector<ReadLevel> expandedLevels(const std::vector<ReadLevel> &levels,
                                      const ActionItem &action);

/// The line of a parameter table for `levels`.
template <class P> Param<P> readLevels(std::vector<ReadLevel> P::*levels)
{
    return structure("Level", levels, readLevelsFromXml, saveReadLevels)
        .label("Levels")
        .meaning("One Level (initialPath, subtagName) per repeated element, outermost first, with "
                 "one e (name, path, tagName) per output column.");
}

} // namespace corvanta
