// The parameters of sort.
#pragma once
#include "corvanta/params/param_table.h"

#include <QStringList>

namespace corvanta {

struct SortParams
{
    QStringList keys;  ///< names of columns, the most significant first; "-name": descending
    QStringList kinds; ///< "column=kind" of text columns
    QString decimal = QStringLiteral(".");
};

/// The child elements of `sort`.
const ParamTable<SortParams> &sortParamTable();

} // namespace corvanta
