#include "actions/write_sas/write_sas.h"

namespace corvanta {

ActionWriteSAS::ActionWriteSAS(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(kWriteSasEntry, saved, parameters)
{
}

void ActionWriteSAS::setTextLengths(const QVector<TextLength> &longest)
{
    m_params.stringColumns = measuredColumns(longest, m_params.f1, m_params.f2);
}

} // namespace corvanta
