// The parameters of readParquet.
//
// Options for files in newer forms are off by default, so that a saved graph accepts and rejects
// the same files in every version.
#pragma once
#include "actions/shared/params/row_range.h"
#include "corvanta/params/param_table.h"

namespace corvanta {

/// Which columns are read; any other number means all.
enum class ColumnSelection { All, Listed, FromPin };

struct ReadParquetParams : shared::RowRangeParams
{
    /// Input pin 0 brings the names, one file per row. `fileName` is then ignored.
    bool fileNameFromPin = false;
    /// A missing file fails the run. Off: a warning, and the next file.
    bool abortIfMissing = true;
    /// 64-bit integers become keys with their low 32 bits. Off: decimal numbers.
    bool int64ToKey = true;
    /// FromPin reads the names from input pin 1.
    ColumnSelection columnSelection = ColumnSelection::All;
    /// Add the last column _FileNames.
    bool outputFilenames = false;
    /// Accept RLE_DICTIONARY, DELTA and BYTE_STREAM_SPLIT pages, and ZSTD, LZ4_RAW and Brotli.
    bool extendedEncodings = false;
    /// Convert dates, times, decimals and large integers to what they represent.
    bool logicalTypes = false;
    /// Booleans become the texts true and false. Off: the keys 1 and 0.
    bool booleanTexts = false;
    /// Leave out columns that cannot be read, with a warning. Off: such files are unreadable.
    bool skipUnreadable = false;
    /// A file without rows is an empty table. Off: an error.
    bool allowEmpty = false;
    /// Compare the checksums of pages that have one.
    bool pageChecksums = false;
    /// A file or a pattern. Not expanded yet.
    QString fileName;
    /// Used with ColumnSelection::Listed; empty: an error.
    QStringList columnsToRead;
};

/// Constant; made by the first call.
const ParamTable<ReadParquetParams> &readParquetParamTable();

} // namespace corvanta
