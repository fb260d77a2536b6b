// writers/write_parquet_params.h
// The parameters of writeParquet.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct WriteParquetParams
{
    int pageSize = 64;
    int rowGroupSize = 50;
    int keyStorage = 2;
    bool writeAllColumns = true;
    bool checkNameCollision = true;
    bool createDir = false;
    bool writeAllRows = true;
    int split = 0;
    double segmentSize = 100;
    int codec = 0;
    bool dictionaryPages = false;
    bool statistics = false;
    QString splitVar;
    QString testCol;
    QString testValue;
    QString file;
    QStringList toWrite;
};

const ParamTable<WriteParquetParams> &writeParquetParamTable();

} // namespace corvanta
