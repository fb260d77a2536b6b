// codecs/deflate/crc32.h
// The checksum of zip and gzip (RFC 1952, section 8).
#pragma once
#include <QtGlobal>

#include <span>

namespace corvanta::deflate {

/// Carry `crc` (0 at the start) on over `bytes`.
quint32 crc32(quint32 crc, std::span<const char> bytes);

/// The checksum of two runs of bytes joined, of which the second has `secondBytes` bytes.
quint32 crc32Join(quint32 first, quint32 second, qint64 secondBytes);

} // namespace corvanta::deflate
