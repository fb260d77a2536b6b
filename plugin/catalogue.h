// The catalogue of the module: every action, in the order of the plug-in interface.
#pragma once

class ActionItem;

namespace corvanta {

/// A new prototype of the action number `index`, from 0; null after the last one, and when memory
/// is short. The caller owns it.
ActionItem *createCatalogueAction(unsigned int index);

} // namespace corvanta
