// The catalogue of the module: every action, in the order of the plug-in interface.
#pragma once

class ActionItem;

namespace corvanta {

/// A new prototype of the action number `index`, from 0; null beyond the last one, and when there
/// is no memory. The caller owns it.
ActionItem *createCatalogueAction(unsigned int index);

} // namespace corvanta
