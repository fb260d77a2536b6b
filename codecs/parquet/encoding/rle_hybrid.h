// Encodes and decodes the hybrid of repeated and bit-packed runs that Parquet uses for levels and
// dictionary indexes (parquet-format, Encodings.md, section "RLE / Bit-Packing Hybrid").
//
// The decoder returns plain bools: it runs once per block of rows, and its caller names the column.
#pragma once
#include <QtGlobal>

#include <span>
#include <vector>

namespace corvanta::parquet {

/// Number of readable bytes that must follow the bytes given to a decoder, for example zeros. The
/// decoders load eight bytes at a time.
inline constexpr size_t kPageTailBytes = 16;

/// Decodes unsigned values in pieces of any size. Threads: one thread at a time per object.
class HybridDecoder
{
public:
    HybridDecoder() = default;
    /// `bitWidth` is the number of bits per value, 0 to 32. The bytes must outlive the decoder.
    HybridDecoder(std::span<const uchar> bytes, int bitWidth)
        : m_at(bytes.data())
        , m_end(bytes.data() + bytes.size())
        , m_bitWidth(bitWidth)
    {
    }

    /// Read the next `n` values. Returns false if there are fewer, or if a repeated value needs
    /// more than `bitWidth` bits. The second form is for levels and widths up to 8.
    bool read(quint32 *out, qsizetype n);
    bool read(uchar *out, qsizetype n);

private:
    // The two forms of read() differ only in the type of the values.
    template <class T> bool readAs(T *out, qsizetype n);
    template <class T> void unpack(T *out, qsizetype n);
    bool nextRun();
    bool readHeader(quint64 &header);
    void startPackedRun(quint64 groups);

    // The bytes after the current run.
    const uchar *m_at = nullptr;
    const uchar *m_end = nullptr;
    int m_bitWidth = 0;
    bool m_isPacked = false;
    quint32 m_repeated = 0;
    quint64 m_left = 0;              // unread values of the run
    const uchar *m_packed = nullptr; // start of a packed run
    quint64 m_bit = 0;               // offset of its next bit
};

/// Unpack `n` levels of one bit, least significant bit first. `bytes` holds (n + 7) / 8 bytes;
/// `out` gets one byte per level.
void unpackBits(const uchar *bytes, qsizetype n, uchar *out);

/// Append levels of one bit (0 or 1, one byte each) in the hybrid form. Groups of 8 equal levels
/// become repeated runs. Other groups become packed runs of at most 63 groups. The last group is
/// padded with zeros.
void appendLevels(std::span<const uchar> levels, std::vector<char> &out);

/// Append dictionary indexes in the hybrid form, with the same rules. All indexes are below
/// 2^bitWidth. Does not append the byte with the bit width.
void appendIndexes(std::span<const quint32> indexes, int bitWidth, std::vector<char> &out);

/// Number of bits of the largest value; 0 for 0. A width of 0 needs no bytes at all, because all
/// values are 0.
int bitWidthOf(quint32 largest);

} // namespace corvanta::parquet
