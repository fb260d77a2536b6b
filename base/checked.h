// base/checked.h
// Arithmetic on numbers that come from files: every overflow is seen.
#pragma once
#include <QtGlobal>

#include <limits>
#include <optional>
#include <type_traits>
#include <utility>

namespace corvanta {

/// `a + b`, or nothing when the sum does not fit `T`.
template <class T> constexpr std::optional<T> checkedAdd(T a, T b)
{
    T sum{};
    if (__builtin_add_overflow(a, b, &sum)) {
        return std::nullopt;
    }
    return sum;
}

/// `a * b`, or nothing when the product does not fit `T`.
template <class T> constexpr std::optional<T> checkedMul(T a, T b)
{
    T product{};
    if (__builtin_mul_overflow(a, b, &product)) {
        return std::nullopt;
    }
    return product;
}

/// `value` as a `To`, or nothing when it does not fit.
template <class To, class From> constexpr std::optional<To> narrow(From value)
{
    static_assert(std::is_integral_v<To> && std::is_integral_v<From>);
    if (!std::in_range<To>(value)) {
        return std::nullopt;
    }
    return static_cast<To>(value);
}

/// A parameter given in MiB as bytes, after clamping to 1 .. 2047.
constexpr qint64 clampedMiBToBytes(qint64 mib)
{
    constexpr qint64 kMaxMiB = 2047;
    const qint64 clamped = mib < 1 ? 1 : (mib > kMaxMiB ? kMaxMiB : mib);
    return clamped * 1024 * 1024;
}

} // namespace corvanta
