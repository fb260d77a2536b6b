#include "actions/sort/sort.h"
#include "actions/sort/sort_panel.h"

namespace corvanta {

const ActionEntry kSortEntry = {
    .typeName = "sort",
    .description = "Sort the rows",
    .icon = ":/Tables/sort.svg",
    .tags = "Common",
    .keywords = "sort order rows keys ascending descending",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionSort>,
    .makePanel = makePanel<Interface_ActionSort>,
};

} // namespace corvanta
