// readers/read_stat_params.h
// The parameters of readStat.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

/// fileFormat when the ending of the file name decides.
inline constexpr int kFormatOfEnding = -1;

struct ReadStatParams
{
    bool fileNameFromPin = false;
    bool outputFilenames = false;
    bool columnNamefromLabel = false;
    bool extractLabels = false;
    int fileFormat = kFormatOfEnding;
    int bufferSize = 2;
    QString encoding = QStringLiteral("UTF-8");
    QString fileName;
};

const ParamTable<ReadStatParams> &readStatParamTable();

} // namespace corvanta
