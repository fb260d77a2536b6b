// Reads the texts of numbers as the values of K and F cells, without losing any.
//
// Threads: pure functions.
#pragma once
#include "base/cell.h"
#include "base/number.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <string_view>

namespace corvanta {

/// Parse all of `text` as the value of a K cell that is not missing. Returns false for other text,
/// and leaves `*value` unchanged.
inline bool parseKey(std::string_view text, quint32 *value)
{
    quint64 number = *value;
    const bool isKey = parseUInt(text, cell::kMissingKeyOther - 1, &number);
    *value = static_cast<quint32>(number);
    return isKey;
}

/// parseDouble() for numbers with the decimal point `point` (ASCII); a "." is then not a part of
/// numbers.
template <class Char>
bool parseLocalDouble(std::basic_string_view<Char> text, char point, double *value)
{
    if (point == '.') {
        return parseDouble(text, value);
    }
    constexpr size_t kMaxChars = 64;
    std::array<Char, kMaxChars> digits{};
    if (text.size() > digits.size() || text.find(Char('.')) != text.npos) {
        return false;
    }
    std::replace_copy(text.begin(), text.end(), digits.begin(), Char(point), Char('.'));
    return parseDouble(std::basic_string_view<Char>(digits.data(), text.size()), value);
}

/// parseDouble(), but false for digits of a number that is too large for a double. An empty text
/// leaves `*value` unchanged.
inline bool parseFinite(std::string_view text, double *value)
{
    return !text.empty() && parseDouble(text, value) &&
           (!std::isinf(*value) || text.back() < '0' || text.back() > '9');
}

/// From this size on, a double does not hold every integer.
inline constexpr double kInexactFrom = 0x1p53;

/// By how much the integer `text` is greater than `nearest`, the value of parseDouble() for it, so
/// that both together compare exactly. A sign, and a fraction of zeros, may be in the text. 0 for
/// other texts, and for integers of 2^64 and more.
inline qint64 integerRest(std::u16string_view text, double nearest)
{
    if (std::abs(nearest) < kInexactFrom) {
        return 0;
    }
    const bool isNegative = text.starts_with(u'-');
    text.remove_prefix(isNegative || text.starts_with(u'+') ? 1 : 0);
    const size_t point = std::min(text.find(u'.'), text.size());
    const bool hasFraction = text.find_first_not_of(u".0", point) != text.npos;
    quint64 size = 0;
    if (hasFraction ||
        !parseUInt(text.substr(0, point), std::numeric_limits<quint64>::max(), &size)) {
        return 0;
    }
    // The difference is small, so that it does not matter that 2^64 wraps to 0.
    const double whole = std::abs(nearest);
    const auto rest =
        static_cast<qint64>(size - (whole < 0x1p64 ? static_cast<quint64>(whole) : 0));
    return isNegative ? -rest : rest;
}

} // namespace corvanta
