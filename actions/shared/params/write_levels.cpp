#include "actions/shared/params/write_levels.h"

namespace corvanta {

namespace {

/// The numbers of the types are those of the format: json_levels.cpp and xml_levels.cpp.
const ParamTable<WriteItem> &itemTable()
{
    static const ParamTable<WriteItem> table{
        number("type", &WriteItem::type)
            .always()
            .label("Type")
            .meaning("Number of what is written, from 0; the numbers depend on the format."),
        text("text", &WriteItem::text)
            .label("Text")
            .meaning("Text that is written, by an item that writes a fixed text."),
        text("calledLevel", &WriteItem::calledLevel)
            .label("Level")
            .meaning("Name of the level that is written, by an item that writes a sub-level."),
        text("p1", &WriteItem::p1)
            .label("Prefix of keys")
            .meaning("Text that is removed from the start of the keys."),
        // Child elements come after all attributes.
        content("columns", &WriteItem::columns)
            .label("Columns")
            .meaning("Columns that are written, by an item that writes some columns."),
    };
    return table;
}

} // namespace

/// Attributes are saved only where they differ from their defaults, unlike those of items.
const ParamTable<WriteLevel> &writeLevelTable()
{
    static const ParamTable<WriteLevel> table{
        text("name", &WriteLevel::name)
            .label("Name")
            .meaning("Name by which an item refers to the level."),
        text("partitionCol", &WriteLevel::partitionCol)
            .label("Partition column")
            .meaning("Rows with the same value in this column belong to the same array of the "
                     "sub-level. The top level ignores it."),
        flag("commaSeparated", &WriteLevel::commaSeparated)
            .label("Separate the elements with commas")
            .meaning("Writes a comma before each element but the first."),
        children("Item", &WriteLevel::items, itemTable())
            .label("Items")
            .meaning("What is written for each element of the level, in this order."),
    };
    return table;
}

} // namespace corvanta
