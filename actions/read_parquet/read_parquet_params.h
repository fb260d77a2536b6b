// The parameters of readParquet.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

/// Which columns are read; any other number means all.
enum class ColumnSelection { All, Listed, FromPin };

struct ReadParquetParams
{
    bool fileNameFromPin = false;
    bool abortIfMissing = true;
    bool int64ToKey = true;
    ColumnSelection columnSelection = ColumnSelection::All;
    bool outputFilenames = false;
    bool extendedEncodings = false;
    bool logicalTypes = false;
    bool skipUnreadable = false;
    bool allowEmpty = false;
    bool pageChecksums = false;
    QString fileName;
    QStringList columnsToRead;
};

const ParamTable<ReadParquetParams> &readParquetParamTable();

} // namespace corvanta
