// plugin/catalogue.h
// How each of the seventeen actions presents itself: one row per action, in the order of the
// plug-in.
#pragma once
#include "corvanta/action_base.h"

namespace corvanta {

inline constexpr int kActionCount = 17;

/// The row of the action called `typeName`, which must be one of the catalogue's.
const ActionDescription &catalogueRow(const char *typeName);

/// A new prototype of the action of row `index` (0 to 16); null outside, and when there is no
/// memory.
ActionItem *createCatalogueAction(unsigned int index);

} // namespace corvanta
