// Result<T, E>: a value or a fault. All code below the actions reports its failures with it.
//
// Code below the actions neither throws on bad input nor logs. It returns a Result whose fault says
// what went wrong and where. The action converts the error code to its message. Each format has one
// error enum `E`. Expected outcomes, such as the end of the data, are values and not faults.
#pragma once
#include <QString>
#include <QtGlobal>

#include <cassert>
#include <optional>
#include <utility>
#include <variant>

namespace corvanta {

/// What went wrong. Plain data; may be copied and kept.
template <class E> struct Fault
{
    E code;              ///< The format's error code.
    QString detail = {}; ///< Text for the user, without a final full stop; may be empty.
    qint64 offset = -1;  ///< Byte offset in the input; -1 if unknown.
};
/// Deduction guide, so that `Fault{Error::X}` needs no template argument: Clang 14 does not deduce
/// aggregates.
template <class E> Fault(E, QString = {}, qint64 = -1) -> Fault<E>;

/// Either a `T` or a `Fault<E>`. Test it before use: `if (!r) return r.fault();`. A fault converts
/// to a Result of every other `T` with the same `E`, so that callers can pass it on unchanged.
/// Reading the value of a fault, or the fault of a value, is a programming error (assert).
/// The compiler warns if a caller ignores a Result.
template <class T, class E> class [[nodiscard]] Result
{
public:
    // NOLINTNEXTLINE(google-explicit-constructor): `return value;` is the point of the type
    Result(T value)
        : m_state(std::in_place_index<0>, std::move(value))
    {
    }
    // NOLINTNEXTLINE(google-explicit-constructor): `return Fault{...};` is the point of the type
    Result(Fault<E> fault)
        : m_state(std::in_place_index<1>, std::move(fault))
    {
    }

    /// True if there is a value.
    explicit operator bool() const { return m_state.index() == 0; }
    /// The value. Move it out with `*std::move(r)`; the result then still counts as a success.
    T &operator*() & { return value(); }
    const T &operator*() const & { return value(); }
    T &&operator*() && { return std::move(value()); }
    /// A member of the value.
    T *operator->() { return &value(); }
    const T *operator->() const { return &value(); }

    /// Why there is no value. Valid as long as the result.
    const Fault<E> &fault() const
    {
        assert(m_state.index() == 1);
        return *std::get_if<1>(&m_state);
    }

private:
    T &value()
    {
        assert(m_state.index() == 0);
        return *std::get_if<0>(&m_state);
    }
    const T &value() const
    {
        assert(m_state.index() == 0);
        return *std::get_if<0>(&m_state);
    }
    std::variant<T, Fault<E>> m_state;
};

/// Success without a value, or a fault. `return {};` reports success.
template <class E> class [[nodiscard]] Result<void, E>
{
public:
    /// Success.
    Result() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): `return Fault{...};` is the point of the type
    Result(Fault<E> fault)
        : m_fault(std::move(fault))
    {
    }

    /// True for success.
    explicit operator bool() const { return !m_fault; }
    /// Why the call failed. Valid as long as the result.
    const Fault<E> &fault() const
    {
        assert(m_fault);
        return *m_fault;
    }

private:
    std::optional<Fault<E>> m_fault;
};

} // namespace corvanta
