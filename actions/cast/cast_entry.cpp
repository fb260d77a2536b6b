#include "actions/cast/cast.h"
#include "actions/cast/cast_panel.h"

namespace corvanta {

const ActionEntry kCastEntry = {
    .typeName = "cast",
    .description = "Change the types of columns",
    .icon = ":/Tables/cast.svg",
    .tags = "Common",
    .keywords = "cast convert type number text column",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionCast>,
    .makePanel = makePanel<Interface_ActionCast>,
};

} // namespace corvanta
