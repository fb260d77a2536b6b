// The parameters of filter.
#pragma once
#include "corvanta/params/param_table.h"

#include <QStringList>

namespace corvanta {

struct FilterParams
{
    QString where;     ///< codecs/expression/expression.h
    QStringList kinds; ///< "column=kind" of text columns
    QString decimal = QStringLiteral(".");
};

/// Attributes of `filter`, then its child elements.
const ParamTable<FilterParams> &filterParamTable();

} // namespace corvanta
