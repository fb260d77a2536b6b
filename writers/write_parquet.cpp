#include "writers/write_parquet.h"

#include "plugin/catalogue.h"

namespace corvanta {

ActionWriteParquet::ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters)
    : PendingAction(catalogueRow("writeParquet"), saved, parameters)
{
}

} // namespace corvanta
