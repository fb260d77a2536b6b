#include "actions/filter/filter.h"
#include "actions/filter/filter_panel.h"

namespace corvanta {

const ActionEntry kFilterEntry = {
    .typeName = "filter",
    .description = "Keep the rows for which an expression is true",
    .icon = ":/Tables/filter.svg",
    .tags = "Common",
    .keywords = "filter where rows condition expression search",
    .pinsIn = 1,
    .pinsOut = 1,
    .makeAction = makeAction<ActionFilter>,
    .makePanel = makePanel<Interface_ActionFilter>,
};

} // namespace corvanta
