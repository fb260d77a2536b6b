// The parameters of readStat.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

enum class StatFormat {
    OfEnding = -1, ///< the ending of the file name determines the format
    Sas = 0,
    SpssSav,
    SpssPor,
    Stata
};

struct ReadStatParams
{
    bool fileNameFromPin = false;
    bool outputFilenames = false;
    bool columnNamefromLabel = false;
    bool extractLabels = false;
    StatFormat fileFormat = StatFormat::OfEnding;
    int bufferSize = 2;
    QString encoding = QStringLiteral("UTF-8");
    QString fileName;
};

const ParamTable<ReadStatParams> &readStatParamTable();

} // namespace corvanta
