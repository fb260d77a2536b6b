#include "plugin/catalogue.h"

/// The host's own actions, one line each; see catalogue.cpp. CMakeLists.txt gives the module the
/// icons and examples of these actions.
#define CORVANTA_ACTIONS(ACTION)                                                                   \
    ACTION(ReadCsv)                                                                                \
    ACTION(WriteCsv)                                                                               \
    ACTION(Select)                                                                                 \
    ACTION(Filter)                                                                                 \
    ACTION(Sort)                                                                                   \
    ACTION(Cast)                                                                                   \
    ACTION(Join)                                                                                   \
    ACTION(Union)                                                                                  \
    ACTION(MergeFiles)

namespace corvanta {

CORVANTA_ACTIONS(CORVANTA_DECLARE_ENTRY)

Catalogue tablesCatalogue()
{
    static constexpr const ActionEntry *kEntries[] = {CORVANTA_ACTIONS(CORVANTA_ENTRY_ADDRESS)};
    return kEntries;
}

} // namespace corvanta
