// Reads and saves the levels of writeJSON and writeXML: Levels, Level and Item elements.
#pragma once
#include "codecs/compose/write_level.h"
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

using compose::WriteItem;
using compose::WriteLevel;

/// The levels of a `Levels` child of `action`; empty without that child.
std::vector<WriteLevel> writeLevelsFromXml(const XMLNode &action);
void saveWriteLevels(const std::vector<WriteLevel> &levels, std::wostream &out);

/// The line of a parameter table for `levels`.
template <class P> Param<P> writeLevels(std::vector<WriteLevel> P::*levels)
{
    return structure("Levels", levels, writeLevelsFromXml, saveWriteLevels)
        .label("Levels")
        .meaning("The form of the file: one Level (name, partitionCol, commaSeparated) per "
                 "nesting, the first one at the top, each with its Items (type, text, calledLevel, "
                 "p1 and columns). Without it every row is one element with all its columns.");
}

} // namespace corvanta
