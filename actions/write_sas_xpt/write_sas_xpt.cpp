#include "actions/write_sas_xpt/write_sas_xpt.h"

namespace corvanta {

ActionWriteSASXPT::ActionWriteSASXPT(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteSasXptEntry, saved, parameters)
{
}

void ActionWriteSASXPT::setTextLengths(const QVector<TextLength> &longest)
{
    m_params.stringColumns = measuredColumns(longest);
}

} // namespace corvanta
