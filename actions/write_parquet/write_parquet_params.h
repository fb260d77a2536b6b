// writers/write_parquet_params.h
// The parameters of writeParquet.
#pragma once
#include "actions/shared/row_writer.h"
#include "corvanta/param_table.h"

namespace corvanta {

struct WriteParquetParams : RowWriterParams
{
    int pageSize = 64;
    int rowGroupSize = 50;
    int keyStorage = 2;
    int split = 0;
    double segmentSize = 100;
    int codec = 0;
    bool dictionaryPages = false;
    bool statistics = false;
    QString splitVar;
    QString file;
};

const ParamTable<WriteParquetParams> &writeParquetParamTable();

} // namespace corvanta
