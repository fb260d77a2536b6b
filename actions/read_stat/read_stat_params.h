// The parameters of readStat.
#pragma once
#include "actions/shared/params/row_range.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

/// The format of a data set, saved as its number.
enum class StatFormat {
    OfEnding = -1, ///< the ending of the file name determines the format
    Sas = 0,       ///< .sas7bdat
    SpssSav,       ///< .sav and .zsav
    SpssPor,       ///< .por, the portable form
    Stata,         ///< .dta
    SasTransport   ///< .xpt; not offered by the panel
};

// Names of parameters, for problems with them.
inline constexpr char kFileFormat[] = "fileFormat";
inline constexpr char kStatEncoding[] = "encoding";

struct ReadStatParams : shared::RowRangeParams
{
    /// Input pin 0 brings the names, one file per row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// Add the last column `fileNameColumn`.
    bool outputFilenames = false;
    /// Columns have the labels of the variables. Off: their names.
    bool columnNamefromLabel = false;
    /// Cells are the labels of labelled values. Off: the values.
    bool extractLabels = false;
    /// Any value but OfEnding applies to all files.
    StatFormat fileFormat = StatFormat::OfEnding;
    /// Buffer between parser and rows, in MiB, 1 to 2047.
    int bufferSize = 2;
    /// Name of the encoding of texts in the file. "UTF-8" is that which the file declares.
    QString encoding = QStringLiteral("UTF-8");
    /// A SAS catalogue with the value labels of a SAS data set. Not expanded yet; empty: none.
    QString catalogFile;
    /// Cells of dates and times are ISO 8601 text. Off: numbers.
    bool formatDates = false;
    /// Rows of each file that are read; 0: all.
    int maxRows = 0;
    /// Name of the column with the name of the file of each row.
    QString fileNameColumn = QStringLiteral("_Filename");
    /// A file or a pattern. Not expanded yet.
    QString fileName;
    /// Names of the variables that are read; empty: all.
    QStringList columnsToRead;
};

/// Constant; made by the first call.
const ParamTable<ReadStatParams> &readStatParamTable();

} // namespace corvanta
