// readers/levels.h
// The levels of the JSON and XML readers: which elements repeat, and what is taken from each
// occurrence.
//
// Level n+1 is searched inside an occurrence of level n, so their cells repeat on the rows of the
// inner one.
#pragma once
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

/// One output column, an `e` element.
struct ReadItem
{
    QString path;         ///< from the occurrence; empty: the occurrence itself
    QString name;         ///< of the output column
    bool tagName = false; ///< the names of the children instead of the text
    bool operator==(const ReadItem &) const = default;
};

/// One repeated element, a `Level` element.
struct ReadLevel
{
    QString initialPath; ///< container whose sub-elements are iterated
    QString subtagName;  ///< empty: every sub-element
    std::vector<ReadItem> items;
    bool operator==(const ReadLevel &) const = default;
};

/// The levels of an action's element. Its children are all levels when the first one is called
/// `Level`; else the element itself is the one level. Empty when nothing is said.
std::vector<ReadLevel> readLevelsFromXml(const XMLNode &action);
void saveReadLevels(const std::vector<ReadLevel> &levels, std::wostream &out);

/// The line of a parameter table for `levels`.
template <class P> Param<P> readLevels(std::vector<ReadLevel> P::*levels)
{
    return structure<P>("Level",
                        {[levels](P &params, const XMLNode &node) {
                             params.*levels = readLevelsFromXml(node);
                         },
                         [levels](const P &params, std::wostream &out, const GlobalParameters *) {
                             saveReadLevels(params.*levels, out);
                         }})
        .label("Levels")
        .meaning("One Level (initialPath, subtagName) per repeated element, outermost first, with "
                 "one e (name, "
                 "path, tagName) per output column.");
}

} // namespace corvanta
