// Arithmetic on numbers that come from files, with a check for overflow.
//
// Use it before such a number becomes a size, an index or a shift. Integer types only. All
// functions can be evaluated at compile time. Threads: pure functions.
#pragma once
#include <QtGlobal>

#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

namespace corvanta {

/// Returns `a + b`, or std::nullopt if the sum does not fit `T`. Both arguments have the same type;
/// convert with narrow() first.
template <class T> constexpr std::optional<T> checkedAdd(T a, T b)
{
    T sum{};
    if (__builtin_add_overflow(a, b, &sum)) {
        return std::nullopt;
    }
    return sum;
}

/// Returns `value` as a `To`, or std::nullopt if it does not fit. Compares mathematical values: a
/// negative number does not fit an unsigned type.
template <class To, class From> constexpr std::optional<To> narrow(From value)
{
    static_assert(std::is_integral_v<To> && std::is_integral_v<From>);
    if (!std::in_range<To>(value)) {
        return std::nullopt;
    }
    return static_cast<To>(value);
}

/// Converts a parameter in MiB to bytes, after limiting it to 1 to 2047 MiB (both included). The
/// upper limit keeps the result inside 31 bits.
constexpr qint64 clampedMiBToBytes(qint64 mib)
{
    constexpr qint64 kMaxMiB = 2047;
    const qint64 clamped = mib < 1 ? 1 : (mib > kMaxMiB ? kMaxMiB : mib);
    return clamped * 1024 * 1024;
}

} // namespace corvanta
