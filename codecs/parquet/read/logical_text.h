// codecs/parquet/logical_text.h
// Stored values as the text of what they mean: dates, times, decimals, identifiers.
#pragma once
#include "codecs/parquet/read/column.h"

#include <string_view>

namespace corvanta::parquet {

/// The most characters that a value of `bytes` stored bytes becomes.
qsizetype maxLogicalChars(const Column &column, qsizetype bytes);

/// Print a stored value of one of the text forms (not Form::Text) in ASCII; the characters written.
qsizetype putLogical(const Column &column, std::string_view stored, char *out);

/// An IEEE half as a double.
double fromHalf(quint16 half);

} // namespace corvanta::parquet
