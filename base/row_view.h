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
    const uchar *const *cells = nullptr; ///< one per column; layout: base/cell.h
    const QString *names = nullptr;      ///< one per column
    const MetaInfo *types = nullptr;     ///< one per column
    int columns = 0;

    cell::Type type(int column) const { return types[column].cellType(); }
    /// The index of the first column with that name (exact), or -1.
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
