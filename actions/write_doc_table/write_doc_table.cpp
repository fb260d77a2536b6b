#include "actions/write_doc_table/write_doc_table.h"

namespace corvanta {

ActionWriteDocTable::ActionWriteDocTable(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteDocTableEntry, saved, parameters)
{
}

void ActionWriteDocTable::addPinIn()
{
    const int pins = pinInCount();
    ActionItem::addPinIn();
    if (pinInCount() > pins) {
        m_params.tables.push_back(defaultDocTable(pins));
    }
}

void ActionWriteDocTable::removePinIn()
{
    if (m_params.tables.size() > 1) {
        m_params.tables.pop_back();
        ActionItem::removePinIn();
    }
}

} // namespace corvanta
