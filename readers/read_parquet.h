// readers/read_parquet.h
// readParquet: rows from Parquet files.
#pragma once
#include "plugin/pending_action.h"
#include "readers/read_parquet_params.h"

namespace corvanta {

class ActionReadParquet final : public PendingAction<ActionReadParquet, ReadParquetParams>
{
public:
    ActionReadParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<ReadParquetParams> &paramTable() { return readParquetParamTable(); }
    static int pinsInFor(const ReadParquetParams &params)
    {
        return params.columnSelection == 2 ? 2 : params.fileNameFromPin ? 1 : 0;
    }
};

} // namespace corvanta
