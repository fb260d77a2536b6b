#include "actions/select/select.h"
#include "actions/select/select_panel.h"

namespace corvanta {

const ActionEntry kSelectEntry = {
    .typeName = "select",
    .description = "Choose rows by number, and choose, order and rename columns",
    .icon = ":/Tables/select.svg",
    .tags = "Common",
    .keywords = "select columns rename rows limit head first last project",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionSelect>,
    .makePanel = makePanel<Interface_ActionSelect>,
};

} // namespace corvanta
