// One member, RFC 1952 section 2.3. Numbers are little-endian.
//
//   offset  bytes  header
//        0      2  1F 8B
//        2      1  method: 8, deflate
//        3      1  flags: 0, no name and no comment
//        4      4  time: 0, unknown
//        8      1  extra flags: 0
//        9      1  operating system: FF, unknown
//
// Then the deflate stream, and the trailer: u32 CRC-32, u32 low half of the size of the content.
#include "codecs/gzip/gzip_writer.h"

#include "base/bytes.h"

#include <array>

namespace corvanta::gzip {

Writer::Writer(ByteSink &sink)
    : m_sink(sink)
    , m_stream(sink)
{
}

bool Writer::begin()
{
    static constexpr std::array<uchar, 10> kHeader{0x1F, 0x8B, 8, 0, 0, 0, 0, 0, 0, 0xFF};
    m_hasBegun = m_sink.write(kHeader.data(), kHeader.size());
    if (m_hasBegun) {
        m_stream.begin();
    }
    return m_hasBegun;
}

bool Writer::write(const void *bytes, qint64 n)
{
    if (!m_hasBegun && !begin()) {
        return false;
    }
    m_size += n;
    return bool(m_stream.write({static_cast<const char *>(bytes), static_cast<size_t>(n)}));
}

bool Writer::finish()
{
    if (!m_hasBegun && !begin()) {
        return false;
    }
    const auto totals = m_stream.finish();
    if (!totals) {
        return false;
    }
    std::array<uchar, 8> trailer{};
    storeLE(totals->crc, trailer.data());
    storeLE(static_cast<quint32>(totals->size), trailer.data() + 4);
    return m_sink.write(trailer.data(), trailer.size());
}

} // namespace corvanta::gzip
