// CRC-32 with the polynomial EDB88320 (reflected), initial value and final XOR of all ones, as in
// RFC 1952, section 8. zlib and ISA-L compute the same function.
#include "codecs/deflate/crc32.h"

#include <zlib.h>

#ifdef CORVANTA_HAVE_ISAL
#include <isa-l/crc.h>
#endif

namespace corvanta::deflate {

quint32 crc32(quint32 crc, std::span<const char> bytes)
{
    const auto *first = reinterpret_cast<const unsigned char *>(bytes.data());
#ifdef CORVANTA_HAVE_ISAL
    return bytes.empty() ? crc : crc32_gzip_refl(crc, first, bytes.size());
#else
    return bytes.empty() ? crc : static_cast<quint32>(::crc32_z(crc, first, bytes.size()));
#endif
}

quint32 crc32Join(quint32 first, quint32 second, qint64 secondBytes)
{
    return static_cast<quint32>(crc32_combine64(first, second, secondBytes));
}

} // namespace corvanta::deflate
