#include "actions/shared/params/read_levels.h"

namespace corvanta {

namespace {

const ParamTable<ReadItem> &itemTable()
{
    // An item without a name is saved without one: expandedLevels() adds the path as its name.
    static const ParamTable<ReadItem> table{
        text("name", &ReadItem::name)
            .expanded()
            .label("Column")
            .meaning("Name of the output column. Empty: the path."),
        text("path", &ReadItem::path)
            .expanded()
            .always()
            .label("Path")
            .meaning("Path of the value, from the occurrence. Empty: the occurrence itself."),
        flag("tagName", &ReadItem::tagName)
            .label("Tag names")
            .meaning("Reads the names of the sub-elements instead of the text."),
        flag("number", &ReadItem::isNumber)
            .label("Number")
            .meaning("Reads the number of the occurrence, from 1, instead of the text; at most one "
                     "column of a level."),
    };
    return table;
}

} // namespace

const ParamTable<ReadLevel> &readLevelTable()
{
    static const ParamTable<ReadLevel> table{
        text("initialPath", &ReadLevel::initialPath)
            .expanded()
            .always()
            .label("Iterate on all the subtags located at:")
            .meaning("Path of the element that contains the occurrences, from the document or from "
                     "the occurrence of the level before."),
        text("subtagName", &ReadLevel::subtagName)
            .expanded()
            .always()
            .label("Repeated element")
            .meaning("Name of the repeated element. Empty: every sub-element."),
        children("e", &ReadLevel::items, itemTable())
            .label("Columns")
            .meaning("The output columns, one element each."),
        strings("LeftOut", &ReadLevel::leftOut)
            .label("Parts left out")
            .meaning("Paths of parts that are left out on purpose: warnUnread does not count them. "
                     "In the "
                     "first level, /PATH begins at the document, and /PATH/ leaves out all parts "
                     "between "
                     "the records on the way to there."),
        flag("required", &ReadLevel::isRequired)
            .label("Only rows with an occurrence")
            .meaning("Of the last level: an outer occurrence without one of this level gives no "
                     "row."),
    };
    return table;
}

// Kept for saved graphs: when the first child is a level, every child is one, whatever its name
// (Parameters.SavedForms). Otherwise the element of the action is itself the only level.
void completeReadLevels(std::vector<ReadLevel> &levels, const XMLNode &action)
{
    const auto read = [](const XMLNode &node) {
        ReadLevel level;
        readLevelTable().read(level, node);
        return level;
    };
    levels.clear(); // they hold what the table read, from elements of one name only
    if (action.getChildNode(0).getName() == QLatin1StringView(kReadLevelElement)) {
        for (int i = 0; i < action.nChildNode(); ++i) {
            levels.push_back(read(action.getChildNode(i)));
        }
    } else if (ReadLevel only = read(action); only != ReadLevel()) {
        levels.push_back(std::move(only));
    }
}

std::vector<ReadLevel> expandedLevels(const std::vector<ReadLevel> &levels,
                                      const ActionItem &action)
{
    const auto expand = [&](QString *text) { *text = action.expandString(*text).trimmed(); };
    std::vector<ReadLevel> expanded = levels;
    for (ReadLevel &level : expanded) {
        expand(&level.initialPath);
        expand(&level.subtagName);
        for (ReadItem &item : level.items) {
            expand(&item.path);
            expand(&item.name);
            // After expansion: a variable may be empty.
            item.name = item.name.isEmpty() ? item.path : item.name;
        }
    }
    return expanded;
}

} // namespace corvanta
