// A row as codecs read it: cell pointers, column names and types.
#pragma once
#include "base/cell.h"
#include "base/meta_info.h"

#include <QString>

namespace corvanta {

/// A read-only view of one row and its columns. Column indexes count from 0.
///
/// Owns nothing: cells are valid until the next row of the source, names and types as long as the
/// source keeps its columns. Text cells are 2-byte aligned.
struct RowView
{
    /// The address of each column's cell; `columns` entries. Layout: base/cell.h.
    const uchar *const *cells = nullptr;
    /// `columns` entries. Names need not be unique.
    const QString *names = nullptr;
    /// `columns` entries.
    const MetaInfo *types = nullptr;
    /// Number of columns; 0 for a row without any.
    int columns = 0;

    /// Determines how cells[column] is decoded. `column` is from 0 to columns - 1, unchecked.
    cell::Type type(int column) const { return types[column].cellType(); }
    /// The index of the first column with that name, or -1. Compares every character, including
    /// its case. Linear in the number of columns: call it once per table and not once per row.
    int indexOf(const QString &name) const
    {
        for (int i = 0; i < columns; ++i) {
            if (names[i] == name) {
                return i;
            }
        }
        return -1;
    }
};

} // namespace corvanta
