#include "actions/write_doc_table/write_doc_table.h"

namespace corvanta {

ActionWriteDocTable::ActionWriteDocTable(const XMLNode &saved, GlobalParameters *parameters)
    // The pins follow from the tables that were saved.
    : PendingAction(kWriteDocTableEntry, saved, parameters)
{
}

void ActionWriteDocTable::addPinIn()
{
    // The host may refuse another pin, which then gets no table.
    const int pins = pinInCount();
    ActionItem::addPinIn();
    if (pinInCount() > pins) {
        m_params.tables.push_back(defaultDocTable(pins));
    }
}

void ActionWriteDocTable::removePinIn()
{
    // Graphs are saved with their tables only, and have as many pins when they are loaded.
    if (m_params.tables.size() > 1) {
        m_params.tables.pop_back();
        ActionItem::removePinIn();
    }
}

} // namespace corvanta
