#include "readers/read_parquet.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionReadParquet::ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("readParquet"), saved, parameters)
{
    if (const QString name = saved.text().trimmed(); !name.isEmpty()) {
        m_params.fileName = name;
    }
}

} // namespace corvanta
