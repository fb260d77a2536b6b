// Prints stored values as text according to their annotation: dates, times, decimals, UUIDs
// (parquet-format, LogicalTypes.md). Threads: pure functions.
#pragma once
#include "codecs/parquet/read/column.h"

#include <string_view>

namespace corvanta::parquet {

/// The maximum number of characters that putLogical() writes for a value of `bytes` stored bytes.
qsizetype maxLogicalChars(const Column &column, qsizetype bytes);

/// Print a stored value in ASCII. The column's form is one of the text forms, but not Form::Text.
/// Returns the number of characters.
qsizetype putLogical(const Column &column, std::string_view stored, char *out);

/// Convert an IEEE 754 half-precision number. Exact.
double fromHalf(quint16 half);

} // namespace corvanta::parquet
