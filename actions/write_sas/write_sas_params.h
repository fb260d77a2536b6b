// The parameters of writeSAS.
#pragma once
#include "actions/shared/params/data_set_params.h"

namespace corvanta {

/// Names of the variables in the data set.
enum class VariableNames { Truncated, Whole, Numbered };

/// What happens to a text that is wider than its column.
enum class WideText { Truncate, Abort };

struct WriteSasParams : DataSetParams
{
    VariableNames columnNameMode = VariableNames::Truncated;
    WideText stringStorage = WideText::Truncate;
    double f1 = 1;
    int f2 = 0;
};

const ParamTable<WriteSasParams> &writeSasParamTable();

} // namespace corvanta
