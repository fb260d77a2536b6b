// The parameters of select.
#pragma once
#include "corvanta/params/param_table.h"

#include <QStringList>

namespace corvanta {

/// Rows are chosen first, then columns, then names are changed.
struct SelectParams
{
    qint64 firstRow = 1; ///< counts from 1
    qint64 lastRow = -1; ///< included; -1: the last row of the table
    QStringList columns; ///< names in the order of the output; empty: all
    QStringList rename;  ///< "old=new"
};

/// Attributes of `select`, then its child elements.
const ParamTable<SelectParams> &selectParamTable();

} // namespace corvanta
