// The parameters of readStat.
#pragma once
#include "corvanta/params/param_table.h"

namespace corvanta {

/// The format of a data set, saved as its number.
enum class StatFormat {
    OfEnding = -1, ///< the ending of the file name determines the format
    Sas = 0,       ///< .sas7bdat
    SpssSav,       ///< .sav
    SpssPor,       ///< .por, the portable form
    Stata          ///< .dta
};

struct ReadStatParams
{
    /// Input pin 0 brings the names, one file per row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// Add the last column _Filename.
    bool outputFilenames = false;
    /// Columns have the labels of the variables. Off: their names.
    bool columnNamefromLabel = false;
    /// Cells are the labels of labelled values. Off: the values.
    bool extractLabels = false;
    /// Any value but OfEnding applies to all files.
    StatFormat fileFormat = StatFormat::OfEnding;
    /// Buffer between parser and rows, in MiB, 1 to 2047.
    int bufferSize = 2;
    /// Name of the encoding of texts in the file.
    QString encoding = QStringLiteral("UTF-8");
    /// A file or a pattern. Not expanded yet.
    QString fileName;
};

/// Constant; made by the first call.
const ParamTable<ReadStatParams> &readStatParamTable();

} // namespace corvanta
