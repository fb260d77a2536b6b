// The CRC-32 checksum of zip and gzip (RFC 1952, section 8).
#pragma once
#include <QtGlobal>

#include <span>

namespace corvanta::deflate {

/// Continue the checksum `crc` over `bytes`. Start with 0. Uses ISA-L if the build has it, else
/// zlib; the result is the same.
quint32 crc32(quint32 crc, std::span<const char> bytes);

/// The checksum of two byte sequences in a row, from their checksums and the length of the second.
quint32 crc32Join(quint32 first, quint32 second, qint64 secondBytes);

} // namespace corvanta::deflate
