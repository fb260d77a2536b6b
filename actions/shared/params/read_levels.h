// The levels of the JSON and XML readers: which elements repeat, and what is taken from each
// occurrence.
//
// Level n+1 is searched inside an occurrence of level n, so their cells repeat on the rows of the
// inner one.
#pragma once
#include "codecs/markup/levels/level.h"
#include "corvanta/action_item.h"
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

/// One output column, an `e` element.
using ReadItem = markup::LevelItem;
/// One repeated element, a `Level` element.
using ReadLevel = markup::Level;

inline constexpr char kReadLevelElement[] = "Level";
/// The attributes and child elements of one level. Constant; made by the first call.
const ParamTable<ReadLevel> &readLevelTable();
/// Complete the levels after they were read from the element of an action: the only level may be
/// the element itself. Empty when it specifies no level.
void completeReadLevels(std::vector<ReadLevel> &levels, const XMLNode &action);

/// The levels with the graph's variables put into paths and names, all trimmed. An item without a
/// name gets its path for a name.
std::vector<ReadLevel> expandedLevels(const std::vector<ReadLevel> &levels,
                                      const ActionItem &action);

/// The line of a parameter table for `levels`.
template <class P> Param<P> readLevels(std::vector<ReadLevel> P::*levels)
{
    return children(kReadLevelElement, levels, readLevelTable(), {nullptr, completeReadLevels})
        .withInlineForm()
        .indentedBy(" ")
        .label("Levels")
        .meaning("One Level (initialPath, subtagName) per repeated element, outermost first, with "
                 "one e (name, path, tagName) per output column.");
}

} // namespace corvanta
