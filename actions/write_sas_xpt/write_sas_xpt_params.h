// The parameters of writeSASXPT.
#pragma once
#include "actions/shared/params/data_set_params.h"

namespace corvanta {

using WriteSasXptParams = DataSetParams;

const ParamTable<WriteSasXptParams> &writeSasXptParamTable();

} // namespace corvanta
