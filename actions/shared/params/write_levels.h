// The levels of writeJSON and writeXML: Levels, Level and Item elements.
//
// The structs belong to the codec (codecs/compose/write_level.h); here they get names in graphs.
#pragma once
#include "codecs/compose/write_level.h"
#include "corvanta/params/param_children.h"

#include <vector>

namespace corvanta {

using compose::WriteItem;
using compose::WriteLevel;

/// Attributes and items of a `Level` element.
const ParamTable<WriteLevel> &writeLevelTable();

/// The line of a parameter table for `levels`. The indent of saved levels is fixed: one tab per
/// depth.
template <class P> Param<P> writeLevels(std::vector<WriteLevel> P::*levels)
{
    return children("Level", levels, writeLevelTable())
        .inside("Levels")
        .indentedBy("\t")
        .label("Levels")
        .meaning("The structure of the file: one Level (name, partitionCol, commaSeparated) per "
                 "nesting, the top level first, each with its Items (type, text, calledLevel, p1 "
                 "and columns). Without levels, every row is one element with all its columns.");
}

} // namespace corvanta
