// Cells as the values of typed columns: booleans, integers, dates and times.
//
// Threads: pure functions.
#pragma once
#include "base/cell.h"
#include "codecs/parquet/write/column_writer.h"

#include <optional>

namespace corvanta::parquet {

/// A stored value.
struct TypedValue
{
    /// 0 or 1, the integer, days since 1970, or microseconds since 1970 or midnight.
    qint64 number = 0;
    /// Whether a timestamp ends with Z.
    bool isUtc = false;
};

/// Whether the cell is missing. An empty text is, too: no typed column has a value for it.
bool isNull(cell::Type type, const uchar *cell);

/// The value of a cell that is not null. `storage` is Boolean or a type after it. Nothing if
/// the cell is not such a value, or not exactly: 1.5 and 007 are not integers.
std::optional<TypedValue> typedValueOf(Storage storage, cell::Type type, const uchar *cell);

} // namespace corvanta::parquet
