#include "plugin/catalogue.h"

/// Every action of the module, one line each: the entry kNAMEEntry, which is defined in the
/// action's folder. Hosts ask for actions by their number in this list, so a new one goes to the
/// end.
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

CORVANTA_ACTIONS(CORVANTA_DECLARE_ENTRY)

Catalogue writeReportCatalogue()
{
    static constexpr const ActionEntry *kEntries[] = {CORVANTA_ACTIONS(CORVANTA_ENTRY_ADDRESS)};
    return kEntries;
}

} // namespace corvanta
