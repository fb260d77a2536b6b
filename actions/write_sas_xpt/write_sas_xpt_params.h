// writers/write_sas_xpt_params.h
// The parameters of writeSASXPT.
#pragma once
#include "actions/shared/row_filter.h"
#include "actions/shared/string_columns.h"
#include "corvanta/param_table.h"

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
