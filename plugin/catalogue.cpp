#include "plugin/catalogue.h"

#include "corvanta/action_entry.h"
#include "corvanta/xml_node.h"

#include <exception>
#include <iterator>

/// Every action, one line each: the entry kNAMEEntry, which is defined in the action's folder.
/// Hosts ask for actions by their number in this list, so a new one goes to the end.
#define CORVANTA_ACTIONS(ACTION)                                                                   \
    ACTION(WriteReport)                                                                            \
    ACTION(ReadExcel)                                                                              \
    ACTION(ReadExcelOld)                                                                           \
    ACTION(ReadExcelSheets)                                                                        \
    ACTION(WriteExcel)                                                                             \
    ACTION(ReadStat)                                                                               \
    ACTION(ReadXml)                                                                                \
    ACTION(WriteXml)                                                                               \
    ACTION(ReadJson)                                                                               \
    ACTION(WriteJson)                                                                              \
    ACTION(ReadXbf)                                                                                \
    ACTION(ReadParquet)                                                                            \
    ACTION(WriteParquet)                                                                           \
    ACTION(WriteSas)                                                                               \
    ACTION(WriteSasXpt)                                                                            \
    ACTION(WriteDoc)                                                                               \
    ACTION(WriteDocTable)

namespace corvanta {

// The entries are defined in the folders of the actions. Their headers are not included here, so
// that the plug-in is not rebuilt with every action.
#define DECLARE_ENTRY(NAME) extern const ActionEntry k##NAME##Entry;
CORVANTA_ACTIONS(DECLARE_ENTRY)

namespace {

#define ENTRY_ADDRESS(NAME) &k##NAME##Entry,
constexpr const ActionEntry *kEntries[] = {CORVANTA_ACTIONS(ENTRY_ADDRESS)};

} // namespace

ActionItem *createCatalogueAction(unsigned int index)
{
    // The host calls this: no exception may leave it.
    try {
        return index < std::size(kEntries)
                   ? kEntries[index]->makeAction(XMLNode::emptyNode(), nullptr)
                   : nullptr;
    } catch (const std::exception &) {
        return nullptr;
    }
}

} // namespace corvanta
