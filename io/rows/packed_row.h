// Packs the cells of a row into bytes that can be moved, kept in memory and written to a temporary
// file. Texts whose characters all fit a byte take half the size of their cells.
//
// The bytes are in machine order and never leave the process. Threads: pure functions.
#pragma once
#include "corvanta/row_buffer.h"

#include <vector>

namespace corvanta::rows {

/// The types of the columns of a row, in order.
using ColumnTypes = std::vector<cell::Type>;

/// Room that packing these cells needs at most, in bytes. `cells` has one entry per type.
qsizetype packedBytesAtMost(const ColumnTypes &types, const uchar *const *cells);

/// Write the packed cells to `out`; returns the address after them.
char *packRow(const ColumnTypes &types, const uchar *const *cells, char *out);

/// Make cells from packed ones: one pointer per type in `cells`. Texts are made in `buffer`,
/// numbers stay where they are packed. Returns the address after the packed cells. Throws
/// std::bad_alloc if there is no memory.
const char *unpackRow(const ColumnTypes &types, const char *packed, RowBuffer *buffer,
                      const uchar **cells);

} // namespace corvanta::rows
