#include "actions/join/join.h"
#include "actions/join/join_panel.h"

namespace corvanta {

const ActionEntry kJoinEntry = {
    .typeName = "join",
    .description = "Join the rows of two tables that have equal keys",
    .icon = ":/Tables/join.svg",
    .tags = "Common",
    .keywords = "join merge lookup match key tables",
    .pinsIn = 2,
    .pinsOut = 1,
    .makeAction = makeAction<ActionJoin>,
    .makePanel = makePanel<Interface_ActionJoin>,
};

} // namespace corvanta
