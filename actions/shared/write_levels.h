// writers/levels.h
// The levels of the JSON and XML writers: what is written for each row, item after item.
#pragma once
#include "corvanta/param_table.h"

#include <vector>

namespace corvanta {

/// One thing to write, an `Item` element. What the types mean is the writer's.
struct WriteItem
{
    int type = 0;
    QString text;
    QString calledLevel; ///< name of the sub-level, for items that write one
    QString p1;          ///< taken away from the start of the keys
    QStringList columns;
    bool operator==(const WriteItem &) const = default;
};

/// A `Level` element. The first level is the top level.
struct WriteLevel
{
    QString name;
    QString partitionCol; ///< rows of one value are one array of the sub-level; not used at the top
    bool commaSeparated = true;
    std::vector<WriteItem> items;
    bool operator==(const WriteLevel &) const = default;
};

/// The levels of a `Levels` child of `action`; empty without one.
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
