// The parameters of cast.
#pragma once
#include "corvanta/params/param_table.h"

#include <QStringList>

namespace corvanta {

/// What happens to a value that the new type does not have.
enum class CastError { Fail, Missing };

struct CastParams
{
    QStringList types; ///< "column=K", "column=F" or "column=U"
    CastError onError = CastError::Fail;
};

/// Attributes of `cast`, then its child elements.
const ParamTable<CastParams> &castParamTable();

} // namespace corvanta
