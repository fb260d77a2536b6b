// writers/write_parquet_params.h
// The parameters of writeParquet.
#pragma once
#include "actions/shared/row_filter.h"
#include "corvanta/param_table.h"

namespace corvanta {

struct WriteParquetParams : RowFilterParams
{
    int pageSize = 64;
    int rowGroupSize = 50;
    int keyStorage = 2;
    bool writeAllColumns = true;
    bool checkNameCollision = true;
    bool createDir = false;
    int split = 0;
    double segmentSize = 100;
    int codec = 0;
    bool dictionaryPages = false;
    bool statistics = false;
    QString splitVar;
    QString file;
    QStringList toWrite;
};

const ParamTable<WriteParquetParams> &writeParquetParamTable();

} // namespace corvanta
