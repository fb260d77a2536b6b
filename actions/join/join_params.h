// The parameters of join.
#pragma once
#include "corvanta/params/param_table.h"

#include <QStringList>

namespace corvanta {

/// The rows of the output that have no partner.
enum class JoinType { Inner, Left, Full };

struct JoinParams
{
    JoinType type = JoinType::Inner;
    QString suffix = QStringLiteral("_2"); ///< of names that both tables have
    QStringList keys;                      ///< "name", or "name=name of the second table"
    QStringList kinds;                     ///< "column=kind" of text columns of both tables
};

/// Attributes of `join`, then its child elements.
const ParamTable<JoinParams> &joinParamTable();

} // namespace corvanta
