// The parameters of union.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Which columns of the tables belong together.
enum class UnionMatch { Names, Positions, Same };

struct UnionParams
{
    UnionMatch match = UnionMatch::Names;
    QString lastColumn;
};

/// The attributes of `union`.
const ParamTable<UnionParams> &unionParamTable();

} // namespace corvanta
