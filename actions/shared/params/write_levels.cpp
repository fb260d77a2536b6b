// Tables of levels and items. The formats differ only in the types of their items, so these and
// their uses are arguments.
#include "actions/shared/params/write_levels.h"

namespace corvanta {

WriteLevelTables::WriteLevelTables(const QStringList &itemTypes, const QStringList &explanations,
                                   const Uses &uses)
    : m_items{
          number("type", &WriteItem::type)
              .always()
              .choices(itemTypes, explanations)
              .otherwise("writes nothing")
              .label("Type")
              .meaning("What is written, by its number. An item with another number writes "
                       "nothing."),
          text("text", &WriteItem::text)
              .onlyWhen("type", uses.text)
              .label("Text")
              .meaning("Text that is written, by an item that writes a fixed text."),
          text("calledLevel", &WriteItem::calledLevel)
              .onlyWhen("type", uses.calledLevel)
              .label("Level")
              .meaning("Name of the level that is written, by an item that writes a sub-level."),
          text("p1", &WriteItem::p1)
              .onlyWhen("type", uses.prefix)
              .label("Prefix of keys")
              .meaning("Text that is removed from the start of the keys."),
          content("columns", &WriteItem::columns)
              .onlyWhen("type", uses.columns)
              .label("Columns")
              .meaning("Columns that are written, by an item that writes some columns."),
      }
    , m_levels{
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
          children("Item", &WriteLevel::items, m_items)
              .label("Items")
              .meaning("What is written for each element of the level, in this order."),
      }
{
}

} // namespace corvanta
