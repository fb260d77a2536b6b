// Rows of a sheet in another form: in order, or with the cells of merged areas filled.
#pragma once
#include "codecs/sheet/workbook_reader.h"

#include <memory>
#include <vector>

namespace corvanta::sheet {

/// The rows of `rows` sorted by their numbers; rows of one number are joined, and of cells at one
/// place the last one counts. Keeps all rows in memory: the first call of next() reads them.
/// Errors of next(): also TooLarge above `maxBytes`.
std::unique_ptr<SheetRows> sortedRows(std::unique_ptr<SheetRows> rows, qint64 maxBytes);

/// The rows of `rows`, which are in order, with every cell of the areas set to the first cell of
/// its area. Rows inside areas that `rows` leaves out are added, but none after its last row.
/// Errors of next(): also TooLarge for areas of tens of millions of cells.
std::unique_ptr<SheetRows> filledRows(std::unique_ptr<SheetRows> rows,
                                      std::vector<CellArea> merged);

} // namespace corvanta::sheet
