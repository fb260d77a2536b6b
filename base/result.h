// base/result.h
// A value or a fault: how failures travel inside the library.
//
// Nothing below the actions throws on bad input or logs; it returns a Result whose fault says what
// went wrong and where. The action turns the code into its message.
#pragma once
#include <QString>
#include <QtGlobal>

#include <cassert>
#include <optional>
#include <utility>
#include <variant>

namespace corvanta {

/// What went wrong: the format's error code, a detail for people, and a byte offset (-1: none).
template <class E> struct Fault
{
    E code;
    QString detail = {};
    qint64 offset = -1;
};
/// Clang 14 does not find this by itself.
template <class E> Fault(E, QString = {}, qint64 = -1) -> Fault<E>;

/// Either a `T` or a `Fault<E>`. Test it before use: `if (!r) return r.fault();`.
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

    explicit operator bool() const { return m_state.index() == 0; }
    T &operator*() & { return value(); }
    const T &operator*() const & { return value(); }
    T &&operator*() && { return std::move(value()); }
    T *operator->() { return &value(); }
    const T *operator->() const { return &value(); }

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

/// Success without a value, or a fault.
template <class E> class [[nodiscard]] Result<void, E>
{
public:
    Result() = default;
    // NOLINTNEXTLINE(google-explicit-constructor): `return Fault{...};` is the point of the type
    Result(Fault<E> fault)
        : m_fault(std::move(fault))
    {
    }

    explicit operator bool() const { return !m_fault; }
    const Fault<E> &fault() const
    {
        assert(m_fault);
        return *m_fault;
    }

private:
    std::optional<Fault<E>> m_fault;
};

} // namespace corvanta
