// writers/write_sas_xpt_params.h
// The parameters of writeSASXPT.
#pragma once
#include "corvanta/param_table.h"
#include "writers/row_filter.h"
#include "writers/string_columns.h"

namespace corvanta {

struct WriteSasXptParams : RowFilterParams
{
    QString fileName;
    bool writeAllColumns = true;
    bool createDir = false;
    bool checkNameCollision = true;
    QStringList colWrite;
    std::vector<StringColumn> stringColumns;
};

const ParamTable<WriteSasXptParams> &writeSasXptParamTable();

} // namespace corvanta
