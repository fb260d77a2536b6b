#include "actions/union/union.h"
#include "actions/union/union_panel.h"

namespace corvanta {

const ActionEntry kUnionEntry = {
    .typeName = "union",
    .description = "Append tables to each other",
    .icon = ":/Tables/union.svg",
    .tags = "Common",
    .keywords = "union append concatenate stack merge tables",
    .pinsIn = 2,
    .pinsOut = 1,
    .maxPinsIn = ActionEntry::kManyPins,
    .makeAction = makeAction<ActionUnion>,
    .makePanel = makePanel<Interface_ActionUnion>,
};

} // namespace corvanta
