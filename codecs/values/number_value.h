// Reads the texts of numbers as the values of K and F cells, without losing any.
//
// Threads: pure functions.
#pragma once
#include "base/cell.h"
#include "base/number.h"

#include <cmath>
#include <string_view>

namespace corvanta::values {

/// Parse all of `text` as the value of a K cell that is not missing. Returns false for other text,
/// and leaves `*value` unchanged.
inline bool parseKey(std::string_view text, quint32 *value)
{
    quint64 number = *value;
    const bool isKey = parseUInt(text, cell::kMissingKeyOther - 1, &number);
    *value = static_cast<quint32>(number);
    return isKey;
}

/// parseDouble(), but false for digits of a number that is too large for a double. An empty text
/// leaves `*value` unchanged.
inline bool parseFinite(std::string_view text, double *value)
{
    return !text.empty() && parseDouble(text, value) &&
           (!std::isinf(*value) || text.back() < '0' || text.back() > '9');
}

} // namespace corvanta::values
