// The buffer:
//
//     cell of column a | gap | cell of column b | gap | ...
//
// A cell is copied unchanged (layout: base/cell.h). A gap of 0 or 1 bytes before a text cell aligns
// its UTF-16 units, which follow the length code, to 2 bytes.
#include "codecs/compose/kept_cells.h"

#include <algorithm>
#include <cstring>

namespace corvanta::compose {

namespace {

/// Bytes to skip at `out` so that the units of the copied text cell are aligned.
qsizetype gapBefore(const CellColumn &column, const uchar *cell, const uchar *out)
{
    if (column.type != cell::Type::Text) {
        return 0;
    }
    const qsizetype lengthBytes = cell::readText(cell).units - cell;
    return static_cast<qsizetype>((reinterpret_cast<quintptr>(out) + lengthBytes) % 2);
}

} // namespace

void KeptCells::keep(const uchar *const *cells)
{
    size_t room = 0;
    size_t indexes = m_cells.size();
    for (const CellColumn &column : m_columns) {
        room += static_cast<size_t>(cell::bytesOf(column.type, cells[column.input])) + 1;
        indexes = std::max(indexes, static_cast<size_t>(column.input) + 1);
    }
    m_bytes.resize(std::max(m_bytes.size(), room));
    m_cells.resize(indexes);
    uchar *out = m_bytes.data();
    for (const CellColumn &column : m_columns) {
        const uchar *const cell = cells[column.input];
        const qsizetype bytes = cell::bytesOf(column.type, cell);
        out += gapBefore(column, cell, out);
        std::memcpy(out, cell, static_cast<size_t>(bytes));
        m_cells[static_cast<size_t>(column.input)] = out;
        out += bytes;
    }
}

} // namespace corvanta::compose
