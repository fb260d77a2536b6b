// A sequence of runs, each a varint header and its data (parquet-format, Encodings.md):
//
//   header   data
//   odd      header >> 1 groups of 8 values, bitWidth bits each, least significant bit first
//   even     one value of ceil(bitWidth / 8) bytes, little-endian, repeated header >> 1 times
//
// Varints have 7 bits per byte, least significant group first; the high bit means "more follow".
#include "codecs/parquet/encoding/rle_hybrid.h"

#include "base/bytes.h"

#include <algorithm>
#include <bit>

namespace corvanta::parquet {

namespace {

constexpr size_t kGroup = 8;
constexpr size_t kMaxPackedGroups = 63; // the header then takes one byte

void appendVarint(quint64 value, std::vector<char> &out)
{
    for (; value >= 0x80; value >>= 7) {
        out.push_back(static_cast<char>(value | 0x80));
    }
    out.push_back(static_cast<char>(value));
}

/// Collects groups of 8 values into runs. The header of a packed run is written when it ends.
class HybridEncoder
{
public:
    HybridEncoder(int bitWidth, std::vector<char> &out)
        : m_bitWidth(bitWidth)
        , m_out(out)
    {
    }

    void addRepeated(quint32 value)
    {
        if (m_repeats != 0 && value != m_repeated) {
            endRepeated();
        }
        endPacked();
        m_repeated = value;
        m_repeats += kGroup;
    }
    template <class T> void addGroup(const T *values, size_t n)
    {
        endRepeated();
        // A longer run would need a longer header, for which there is no room.
        if (m_groups == kMaxPackedGroups) {
            endPacked();
        }
        if (m_groups == 0) {
            m_header = m_out.size();
            m_out.push_back(0);
        }
        ++m_groups;
        quint64 bits = 0;
        int filled = 0;
        for (size_t i = 0; i < kGroup; ++i) {
            bits |= static_cast<quint64>(i < n ? values[i] : 0) << filled;
            for (filled += m_bitWidth; filled >= 8; filled -= 8, bits >>= 8) {
                m_out.push_back(static_cast<char>(bits));
            }
        }
    }
    void end()
    {
        endRepeated();
        endPacked();
    }

private:
    void endPacked()
    {
        if (m_groups != 0) {
            m_out[m_header] = static_cast<char>(m_groups << 1 | 1);
            m_groups = 0;
        }
    }
    void endRepeated()
    {
        if (m_repeats != 0) {
            writeRepeated();
            m_repeats = 0;
        }
    }
    /// An even header and one value, in as few bytes as the bit width needs.
    void writeRepeated()
    {
        appendVarint(m_repeats << 1, m_out);
        for (int bits = 0; bits < m_bitWidth; bits += 8) {
            m_out.push_back(static_cast<char>(m_repeated >> bits));
        }
    }

    int m_bitWidth;
    std::vector<char> &m_out;
    quint64 m_repeats = 0;
    quint32 m_repeated = 0;
    size_t m_groups = 0;
    size_t m_header = 0;
};

} // namespace

bool HybridDecoder::readHeader(quint64 &header)
{
    // Six bytes: more than any page needs, and no shift beyond 64 bits.
    constexpr int kMaxShift = 35;
    header = 0;
    for (int shift = 0; m_at != m_end && shift <= kMaxShift; shift += 7) {
        const uchar byte = *m_at++;
        header |= static_cast<quint64>(byte & 0x7F) << shift;
        if (byte < 0x80) {
            return true;
        }
    }
    return false;
}

void HybridDecoder::startPackedRun(quint64 groups)
{
    // Some writers truncate the last run of a page after the values that are needed.
    const auto bytesLeft = static_cast<quint64>(m_end - m_at);
    const quint64 bytes = std::min(groups * static_cast<quint64>(m_bitWidth), bytesLeft);
    m_left = std::min(groups * kGroup, bytes * 8 / static_cast<quint64>(m_bitWidth));
    m_packed = m_at;
    m_bit = 0;
    m_at += bytes;
}

bool HybridDecoder::nextRun()
{
    quint64 header = 0;
    if (!readHeader(header)) {
        return false;
    }
    m_isPacked = (header & 1) != 0;
    if (m_isPacked) {
        startPackedRun(header >> 1);
        return true;
    }
    const auto bytesLeft = static_cast<quint64>(m_end - m_at);
    const auto valueBytes = static_cast<quint64>((m_bitWidth + 7) / 8);
    if (valueBytes > bytesLeft) {
        return false;
    }
    m_repeated = 0;
    for (quint64 i = 0; i < valueBytes; ++i) {
        m_repeated |= static_cast<quint32>(*m_at++) << (8 * i);
    }
    m_left = header >> 1;
    // A shift by 32 is undefined, and every number fits 32 bits.
    return m_bitWidth == 32 || m_repeated >> m_bitWidth == 0;
}

template <class T> void HybridDecoder::unpack(T *out, qsizetype n)
{
    // Levels: 8 values per step. Runs of levels start at whole bytes, blocks have multiples of 8
    // rows.
    if constexpr (sizeof(T) == 1) {
        if (m_bitWidth == 1 && m_bit % 8 == 0) {
            unpackBits(m_packed + m_bit / 8, n, out);
            m_bit += static_cast<quint64>(n);
            return;
        }
    }
    const quint64 mask = (quint64(1) << m_bitWidth) - 1;
    quint64 bit = m_bit;
    for (qsizetype i = 0; i < n; ++i, bit += static_cast<quint64>(m_bitWidth)) {
        out[i] = static_cast<T>(loadLE<quint64>(m_packed + bit / 8) >> (bit % 8) & mask);
    }
    m_bit = bit;
}

template <class T> bool HybridDecoder::readAs(T *out, qsizetype n)
{
    // Writers may leave out the runs of a width of 0, so none are read.
    if (m_bitWidth == 0) {
        std::fill_n(out, n, T(0));
        return true;
    }
    while (n > 0) {
        if (m_left == 0) {
            if (!nextRun()) {
                return false;
            }
            continue;
        }
        const auto take = static_cast<qsizetype>(std::min(m_left, static_cast<quint64>(n)));
        if (m_isPacked) {
            unpack(out, take);
        } else {
            std::fill_n(out, take, static_cast<T>(m_repeated));
        }
        m_left -= static_cast<quint64>(take);
        out += take;
        n -= take;
    }
    return true;
}

bool HybridDecoder::read(quint32 *out, qsizetype n)
{
    return readAs(out, n);
}
bool HybridDecoder::read(uchar *out, qsizetype n)
{
    return readAs(out, n);
}

void unpackBits(const uchar *bytes, qsizetype n, uchar *out)
{
    qsizetype i = 0;
    for (; i + 8 <= n; i += 8) {
        // Copy the byte to all 8 bytes of a word, keep bit k in byte k, and move it to the lowest
        // bit of that byte.
        quint64 spread = bytes[i / 8] * 0x0101010101010101ULL & 0x8040201008040201ULL;
        spread = (spread + 0x7F7F7F7F7F7F7F7FULL) >> 7 & 0x0101010101010101ULL;
        storeLE(spread, out + i);
    }
    for (; i < n; ++i) {
        out[i] = bytes[i / 8] >> (i % 8) & 1;
    }
}

void appendLevels(std::span<const uchar> levels, std::vector<char> &out)
{
    constexpr quint64 kAllOnes = 0x0101010101010101ULL;
    HybridEncoder encoder(1, out);
    size_t i = 0;
    for (; i + kGroup <= levels.size(); i += kGroup) {
        const auto group = loadLE<quint64>(levels.data() + i);
        if (group == 0 || group == kAllOnes) {
            encoder.addRepeated(group == 0 ? 0 : 1);
        } else {
            encoder.addGroup(levels.data() + i, kGroup);
        }
    }
    if (i < levels.size()) {
        encoder.addGroup(levels.data() + i, levels.size() - i);
    }
    encoder.end();
}

void appendIndexes(std::span<const quint32> indexes, int bitWidth, std::vector<char> &out)
{
    HybridEncoder encoder(bitWidth, out);
    size_t i = 0;
    for (; i + kGroup <= indexes.size(); i += kGroup) {
        const quint32 *const group = indexes.data() + i;
        if (std::all_of(group, group + kGroup,
                        [group](quint32 index) { return index == *group; })) {
            encoder.addRepeated(*group);
        } else {
            encoder.addGroup(group, kGroup);
        }
    }
    if (i < indexes.size()) {
        encoder.addGroup(indexes.data() + i, indexes.size() - i);
    }
    encoder.end();
}

int bitWidthOf(quint32 largest)
{
    return static_cast<int>(std::bit_width(largest));
}

} // namespace corvanta::parquet
