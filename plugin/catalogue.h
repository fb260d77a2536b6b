// The catalogues of the modules: their actions, in the order of the plug-in interface.
#pragma once
#include "corvanta/plugin_interface.h"

namespace corvanta {

/// The actions of CorvantaPluginWriteReport.
Catalogue writeReportCatalogue();
/// The host's own actions: those of CorvantaPluginTables.
Catalogue tablesCatalogue();

} // namespace corvanta

// For a list of actions, ACTION(NAME)..., whose entries are kNAMEEntry. The headers of the actions
// are not included, so that a module is not rebuilt with every action.
#define CORVANTA_DECLARE_ENTRY(NAME) extern const ActionEntry k##NAME##Entry;
#define CORVANTA_ENTRY_ADDRESS(NAME) &k##NAME##Entry,
