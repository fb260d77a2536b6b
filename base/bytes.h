// Loads and stores numbers at unaligned addresses, in little-endian, big-endian or machine order.
//
// `T` is an integer or floating-point type of 1 to 8 bytes. The functions read or write exactly
// sizeof(T) bytes and check nothing: the callers check that all of them are inside their buffer.
// Threads: pure functions.
#pragma once
#include <QtEndian>
#include <QtGlobal>

#include <cstring>

namespace corvanta {

/// The little-endian number at `bytes`.
template <class T> inline T loadLE(const void *bytes)
{
    return qFromLittleEndian<T>(bytes);
}
/// The big-endian number at `bytes`.
template <class T> inline T loadBE(const void *bytes)
{
    return qFromBigEndian<T>(bytes);
}
/// Store `value` at `bytes` in little-endian order.
template <class T> inline void storeLE(T value, void *bytes)
{
    qToLittleEndian(value, bytes);
}
/// Store `value` at `bytes` in big-endian order.
template <class T> inline void storeBE(T value, void *bytes)
{
    qToBigEndian(value, bytes);
}

/// The value in machine byte order at `bytes`. `T` is any trivially copyable type. Use this and not
/// a cast of the pointer: the address may be unaligned, and a cast breaks the aliasing rules.
template <class T> inline T loadNative(const void *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}
/// Store `value` at `bytes` in machine byte order.
template <class T> inline void storeNative(T value, void *bytes)
{
    std::memcpy(bytes, &value, sizeof value);
}

} // namespace corvanta
