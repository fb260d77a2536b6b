// codecs/parquet/rle_hybrid.h
// The RLE/bit-packing hybrid of levels and dictionary indexes (parquet-format, Encodings.md).
#pragma once
#include <QtGlobal>

#include <span>
#include <vector>

namespace corvanta::parquet {

/// Bytes that must be readable (zero, say) behind the bytes given to a decoder here.
inline constexpr size_t kPageTailBytes = 16;

/// Decodes a run of unsigned values, a piece at a time. Threads: one at a time.
class HybridDecoder
{
public:
    HybridDecoder() = default;
    /// `bitWidth` is 0 to 32. The bytes must outlive the decoder.
    HybridDecoder(std::span<const uchar> bytes, int bitWidth)
        : m_at(bytes.data())
        , m_end(bytes.data() + bytes.size())
        , m_bitWidth(bitWidth)
    {
    }

    /// The next `n` values; false when there are not as many, or a value needs more bits.
    bool read(quint32 *out, qsizetype n);
    bool read(uchar *out, qsizetype n);

private:
    template <class T> bool readAs(T *out, qsizetype n);
    template <class T> void unpack(T *out, qsizetype n);
    bool nextRun();

    const uchar *m_at = nullptr;
    const uchar *m_end = nullptr;
    int m_bitWidth = 0;
    bool m_isPacked = false;
    quint32 m_repeated = 0;
    quint64 m_left = 0;              // values of the run
    const uchar *m_packed = nullptr; // of a packed run
    quint64 m_bit = 0;               // next bit of it
};

/// BIT_PACKED levels of one bit: `n` values from whole bytes. `bytes` holds (n + 7) / 8 of them.
void unpackBits(const uchar *bytes, qsizetype n, uchar *out);

/// Append levels of one bit (0 or 1, a byte each) in the hybrid form. Groups of 8 levels that are
/// all equal make repeated runs; other groups go into packed runs of at most 63 groups, the last
/// group filled up with zeros.
void appendLevels(std::span<const uchar> levels, std::vector<char> &out);

/// Append dictionary indexes: packed runs of at most 63 groups, repeated runs of equal groups.
void appendIndexes(std::span<const quint32> indexes, int bitWidth, std::vector<char> &out);

/// Bits that the largest value takes.
int bitWidthOf(quint32 largest);

} // namespace corvanta::parquet
