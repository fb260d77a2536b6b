// writers/write_sas_params.h
// The parameters of writeSAS.
#pragma once
#include "actions/shared/row_filter.h"
#include "actions/shared/string_columns.h"
#include "corvanta/param_table.h"

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
