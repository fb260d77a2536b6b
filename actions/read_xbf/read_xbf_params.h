// readers/read_xbf_params.h
// The parameters of ReadXBF.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadXbfParams
{
    QString fileName;
    int bufferSize = 1;
    int encoding = 0;
    bool useDBT = true;
    bool dbtInRam = false;
    bool level7 = false;
};

const ParamTable<ReadXbfParams> &readXbfParamTable();

} // namespace corvanta
