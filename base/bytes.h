// base/bytes.h
// Unaligned little- and big-endian loads and stores.
#pragma once
#include <QtEndian>
#include <QtGlobal>

#include <cstring>

namespace corvanta {

template <class T> inline T loadLE(const void *bytes)
{
    return qFromLittleEndian<T>(bytes);
}
template <class T> inline T loadBE(const void *bytes)
{
    return qFromBigEndian<T>(bytes);
}
template <class T> inline void storeLE(T value, void *bytes)
{
    qToLittleEndian(value, bytes);
}
template <class T> inline void storeBE(T value, void *bytes)
{
    qToBigEndian(value, bytes);
}

/// A value of the machine's own byte order at any address.
template <class T> inline T loadNative(const void *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}
template <class T> inline void storeNative(T value, void *bytes)
{
    std::memcpy(bytes, &value, sizeof value);
}

} // namespace corvanta
