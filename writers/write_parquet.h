// writers/write_parquet.h
// writeParquet: rows into Parquet files.
#pragma once
#include "plugin/pending_action.h"
#include "writers/write_parquet_params.h"

namespace corvanta {

class ActionWriteParquet final : public PendingAction<ActionWriteParquet, WriteParquetParams>
{
public:
    ActionWriteParquet(const XMLNode &saved, GlobalParameters *parameters);
    static const ParamTable<WriteParquetParams> &paramTable() { return writeParquetParamTable(); }
};

} // namespace corvanta
