// writers/write_sas_params.h
// The parameters of writeSAS.
#pragma once
#include "corvanta/param_table.h"
#include "writers/row_filter.h"
#include "writers/string_columns.h"

namespace corvanta {

struct WriteSasParams : RowFilterParams
{
    QString fileName;
    int columnNameMode = 0;
    int stringStorage = 0;
    double f1 = 1;
    int f2 = 0;
    bool writeAllColumns = true;
    bool createDir = false;
    bool checkNameCollision = true;
    QStringList colWrite;
    std::vector<StringColumn> stringColumns;
};

const ParamTable<WriteSasParams> &writeSasParamTable();

} // namespace corvanta
