// The parameters of writeSASXPT.
//
// Widths are in bytes of UTF-8, because the format stores texts in columns of fixed width.
#pragma once
#include "actions/shared/params/data_set_params.h"

namespace corvanta {

/// The format has no parameters of its own.
using WriteSasXptParams = DataSetParams;

/// Attributes of `writeSASXPT`, then its child elements.
const ParamTable<WriteSasXptParams> &writeSasXptParamTable();

} // namespace corvanta
