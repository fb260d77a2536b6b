// Looks through the records of a sheet before its cells are decoded.
#pragma once
#include "codecs/sheet/workbook_reader.h"
#include "codecs/xls/record_reader.h"

#include <atomic>
#include <vector>

namespace corvanta::xls {

/// A cell record in the stream, or the IXFE record directly before it.
struct CellPlace
{
    quint16 row = 0;
    qint64 offset = 0;
};

/// What must be known before the first row: properties of rows are stored among the cells, and
/// those of columns after them.
struct SheetScan
{
    qint64 begin = 0; ///< of the first record
    qint64 end = 0;   ///< after the last one
    bool hasCells = false;
    bool isOrdered = true;    ///< the rows of the cells never decrease
    bool hasEnd = true;       ///< an EOF record
    bool isTruncated = false; ///< the stream ends inside a record
    std::vector<bool> hiddenRows;
    sheet::SheetLayout layout;
};

/// Scan the sheet whose BOF record is at `offset`. A stream of a chart or of a module has no cells.
/// Errors: Damaged without a BOF record, ReadFailed, Stopped when `stop` is set.
sheet::WorkbookResult<SheetScan> scanSheet(RecordReader &reader, qint64 offset,
                                           const std::atomic<bool> &stop);

/// The cell records of a scanned sheet by row, and in the order of the file in each row. Needs 16
/// bytes for each. Errors: ReadFailed, Stopped.
sheet::WorkbookResult<std::vector<CellPlace>>
sortedCells(RecordReader &reader, const SheetScan &scan, const std::atomic<bool> &stop);

} // namespace corvanta::xls
