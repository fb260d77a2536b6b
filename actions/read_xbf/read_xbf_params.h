// The parameters of ReadXBF.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

/// Encoding of texts in a table. Any other number keeps the bytes as they are.
enum class XbfEncoding { Windows1252, System, Utf8 };

struct ReadXbfParams
{
    QString fileName;
    int bufferSize = 1;
    XbfEncoding encoding = XbfEncoding::Windows1252;
    bool useDBT = true;
    bool dbtInRam = false;
    bool level7 = false;
};

const ParamTable<ReadXbfParams> &readXbfParamTable();

} // namespace corvanta
