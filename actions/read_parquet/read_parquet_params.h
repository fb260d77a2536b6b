// readers/read_parquet_params.h
// The parameters of readParquet.
#pragma once
#include "corvanta/param_table.h"

namespace corvanta {

struct ReadParquetParams
{
    bool fileNameFromPin = false;
    bool abortIfMissing = true;
    bool int64ToKey = true;
    int columnSelection = 0;
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
