// The levels of writeJSON and writeXML: Levels, Level and Item elements.
//
// The structs belong to the codec (codecs/compose/write_level.h); here they get names in graphs.
#pragma once
#include "codecs/compose/write_level.h"
#include "corvanta/params/param_children.h"

#include <initializer_list>
#include <vector>

namespace corvanta {

using compose::WriteItem;
using compose::WriteLevel;

/// The tables of the levels of one writer. They differ in the types of their items. The lines of
/// writeLevels() refer to the tables, which must outlive them.
class WriteLevelTables
{
public:
    /// The types of items that use a member, as they are saved.
    struct Uses
    {
        QStringList text;
        QStringList calledLevel;
        QStringList prefix;
        QStringList columns;
    };
    /// `types` are the enumerators of the writer's item types in order, from 0, with their texts.
    /// Any other number is kept as it is.
    template <class Type>
    WriteLevelTables(std::initializer_list<Choice<Type>> types, const Uses &uses)
        : WriteLevelTables(textsOf(types), explanationsOf(types), uses)
    {
    }
    WriteLevelTables(const WriteLevelTables &) = delete;
    WriteLevelTables &operator=(const WriteLevelTables &) = delete;

    const ParamTable<WriteLevel> &levels() const { return m_levels; }

private:
    WriteLevelTables(const QStringList &itemTypes, const QStringList &explanations,
                     const Uses &uses);

    ParamTable<WriteItem> m_items;
    ParamTable<WriteLevel> m_levels; // refers to m_items
};

/// The line of a parameter table for `levels`. The indent of saved levels is fixed: one tab per
/// depth.
template <class P>
Param<P> writeLevels(std::vector<WriteLevel> P::*levels, const WriteLevelTables &tables)
{
    return children("Level", levels, tables.levels())
        .inside("Levels")
        .indentedBy("\t")
        .label("Levels")
        .meaning("The structure of the file: one Level (name, partitionCol, commaSeparated) per "
                 "nesting, the top level first, each with its Items (type, text, calledLevel, p1 "
                 "and columns). Without levels, every row is one element with all its columns.");
}

} // namespace corvanta
