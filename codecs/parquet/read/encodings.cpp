// The newer value encodings (parquet-format, Encodings.md):
//
//   DELTA_BINARY_PACKED      varints: block size, miniblocks per block, number of values; zigzag
//                            varint: first value. Then blocks: zigzag varint smallest delta, one
//                            byte per miniblock with its bit width, and the miniblocks: the deltas
//                            minus the smallest, bit-packed, least significant bit first
//   DELTA_LENGTH_BYTE_ARRAY  the lengths as DELTA_BINARY_PACKED, then the bytes of all values
//   DELTA_BYTE_ARRAY         for each value the number of leading bytes that it shares with the
//                            previous value, as DELTA_BINARY_PACKED; then the remaining bytes as
//                            DELTA_LENGTH_BYTE_ARRAY
//   BYTE_STREAM_SPLIT        the first byte of every value, then the second byte of every value ...
//
// The functions in this file return plain bools; toPlain() turns them into a fault.
#include "codecs/parquet/read/encodings.h"

#include "base/bytes.h"
#include "base/limits.h"
#include "codecs/parquet/encoding/rle_hybrid.h"

#include <QLatin1StringView>

#include <algorithm>
#include <array>

using namespace Qt::StringLiterals;

namespace corvanta::parquet {

namespace {

/// Maximum number of values of a page. Real pages have a tenth of it.
constexpr qint32 kMaxValues = 16 << 20;

/// Decodes DELTA_BINARY_PACKED.
class DeltaDecoder
{
public:
    explicit DeltaDecoder(std::span<const uchar> in)
        : m_at(in.data())
        , m_end(in.data() + in.size())
    {
    }

    /// Read all values. Returns false if they are damaged or more than `maxValues`.
    bool readAll(std::vector<qint64> &values, qint32 maxValues)
    {
        Header header;
        if (!readHeader(header, maxValues)) {
            return false;
        }
        values.clear();
        values.reserve(header.count);
        if (header.count != 0) {
            values.push_back(unzigzag(header.first));
        }
        while (values.size() < header.count) {
            if (!block(values, header.count, header.miniblocks,
                       header.blockSize / header.miniblocks)) {
                return false;
            }
        }
        return true;
    }
    /// The bytes after the values.
    std::span<const uchar> rest() const { return {m_at, m_end}; }

private:
    struct Header
    {
        quint64 blockSize = 0; // in values
        quint64 miniblocks = 0;
        quint64 count = 0;
        quint64 first = 0;
    };

    bool readHeader(Header &header, qint32 maxValues)
    {
        // Real blocks have 128 values. The format requires that a miniblock has a multiple of 32,
        // but a multiple of 8 is all that the decoder needs: every miniblock ends at a byte.
        constexpr quint64 kMaxBlockSize = 1 << 20;
        return varint(header.blockSize) && varint(header.miniblocks) && varint(header.count) &&
               varint(header.first) && header.blockSize > 0 && header.blockSize <= kMaxBlockSize &&
               header.miniblocks > 0 && header.blockSize % header.miniblocks == 0 &&
               header.blockSize / header.miniblocks % 8 == 0 &&
               header.count <= static_cast<quint64>(maxValues);
    }

    static qint64 unzigzag(quint64 value)
    {
        return static_cast<qint64>(value >> 1 ^ (~(value & 1) + 1));
    }

    bool varint(quint64 &value)
    {
        constexpr int kMaxShift = 63;
        value = 0;
        for (int shift = 0; m_at != m_end && shift <= kMaxShift; shift += 7) {
            const uchar byte = *m_at++;
            value |= static_cast<quint64>(byte & 0x7F) << shift;
            if (byte < 0x80) {
                return true;
            }
        }
        return false;
    }

    bool block(std::vector<qint64> &values, quint64 count, quint64 miniblocks,
               quint64 miniblockSize)
    {
        quint64 smallest = 0;
        if (!varint(smallest) || miniblocks > static_cast<quint64>(m_end - m_at)) {
            return false;
        }
        const uchar *const widths = m_at;
        m_at += miniblocks;
        for (quint64 i = 0; i < miniblocks && values.size() < count; ++i) {
            const quint64 bytes = miniblockSize / 8 * widths[i];
            constexpr int kWidest = 64;
            if (widths[i] > kWidest || bytes > static_cast<quint64>(m_end - m_at)) {
                return false;
            }
            // The last miniblock is complete in the file, with padding after the last value.
            const quint64 take = std::min(miniblockSize, count - values.size());
            unpack(values, take, widths[i], static_cast<quint64>(unzigzag(smallest)));
            m_at += bytes;
        }
        return true;
    }

    void unpack(std::vector<qint64> &values, quint64 n, int width, quint64 smallest)
    {
        // Unsigned, because sums are modulo 2^64: the delta of far apart values overflows.
        auto value = static_cast<quint64>(values.back());
        for (quint64 i = 0; i < n; ++i) {
            value += smallest + bitsAt(i * static_cast<quint64>(width), width);
            values.push_back(static_cast<qint64>(value));
        }
    }

    /// Up to 64 bits at a bit offset. May read up to 9 bytes, which kPageTailBytes allows.
    quint64 bitsAt(quint64 bit, int width) const
    {
        if (width == 0) {
            return 0;
        }
        const uchar *const at = m_at + bit / 8;
        const int shift = static_cast<int>(bit % 8);
        quint64 bits = loadLE<quint64>(at) >> shift;
        if (shift != 0) {
            bits |= static_cast<quint64>(at[8]) << (64 - shift);
        }
        return width == 64 ? bits : bits & ((quint64(1) << width) - 1);
    }

    const uchar *m_at;
    const uchar *m_end;
};

/// Deltas as plain numbers of `width` bytes (4 or 8); false if they are damaged or too many.
bool plainNumbers(std::span<const uchar> in, int width, qint32 maxValues, std::vector<uchar> &out)
{
    std::vector<qint64> values;
    if (!DeltaDecoder(in).readAll(values, maxValues)) {
        return false;
    }
    out.resize(values.size() * static_cast<size_t>(width));
    uchar *at = out.data();
    for (const qint64 value : values) {
        if (width == 4) { // deltas of INT32 are modulo 2^32, so the low half is the value
            storeLE(static_cast<quint32>(value), at);
        } else {
            storeLE(value, at);
        }
        at += width;
    }
    return true;
}

/// Appends values in PLAIN form: a length before each value, unless the column has a fixed length.
class PlainTexts
{
public:
    PlainTexts(const Column &column, std::vector<uchar> &out)
        : m_fixedBytes(column.valueBytes)
        , m_out(out)
    {
        m_out.clear();
    }
    /// Start a value of `bytes` bytes. Returns false if the column's values have another length.
    bool begin(size_t bytes)
    {
        if (m_fixedBytes != 0) {
            return bytes == static_cast<size_t>(m_fixedBytes);
        }
        std::array<uchar, 4> length{};
        storeLE(static_cast<quint32>(bytes), length.data());
        m_out.insert(m_out.end(), length.begin(), length.end());
        return true;
    }
    void add(const uchar *bytes, size_t n) { m_out.insert(m_out.end(), bytes, bytes + n); }
    /// Repeat `n` bytes from `offset` of the output.
    void addAgain(size_t offset, size_t n)
    {
        // Indexes and not pointers: resize() may move the output.
        m_out.resize(m_out.size() + n);
        std::copy_n(m_out.begin() + static_cast<qptrdiff>(offset), n,
                    m_out.end() - static_cast<qptrdiff>(n));
    }
    size_t size() const { return m_out.size(); }

private:
    int m_fixedBytes;
    std::vector<uchar> &m_out;
};

bool plainFromLengths(const Column &column, std::span<const uchar> in, qint32 maxValues,
                      std::vector<uchar> &out)
{
    DeltaDecoder delta(in);
    std::vector<qint64> lengths;
    if (!delta.readAll(lengths, maxValues)) {
        return false;
    }
    std::span<const uchar> bytes = delta.rest();
    PlainTexts texts(column, out);
    for (const qint64 length : lengths) {
        if (length < 0 || static_cast<quint64>(length) > bytes.size() ||
            !texts.begin(static_cast<size_t>(length))) {
            return false;
        }
        texts.add(bytes.data(), static_cast<size_t>(length));
        bytes = bytes.subspan(static_cast<size_t>(length));
    }
    return true;
}

/// Builds the values of DELTA_BYTE_ARRAY from prefixes and suffixes.
class PrefixedTexts
{
public:
    PrefixedTexts(const Column &column, std::span<const uchar> suffixes, std::vector<uchar> &out)
        : m_texts(column, out)
        , m_suffixes(suffixes)
    {
    }

    /// Append the first `prefix` bytes of the previous value and the next `suffix` bytes.
    bool add(qint64 prefix, qint64 suffix)
    {
        if (prefix < 0 || static_cast<size_t>(prefix) > m_previousBytes || suffix < 0 ||
            static_cast<size_t>(suffix) > m_suffixes.size()) {
            return false;
        }
        // Prefixes can make the output much larger than the page. Its size is limited like that of
        // an uncompressed page.
        const auto length = static_cast<size_t>(prefix + suffix);
        if (!m_texts.begin(length) ||
            m_texts.size() + length > static_cast<size_t>(limits::kParquetPageBytes)) {
            return false;
        }
        const size_t begin = m_texts.size();
        m_texts.addAgain(m_previousAt, static_cast<size_t>(prefix));
        m_texts.add(m_suffixes.data(), static_cast<size_t>(suffix));
        m_suffixes = m_suffixes.subspan(static_cast<size_t>(suffix));
        m_previousAt = begin;
        m_previousBytes = length;
        return true;
    }

private:
    PlainTexts m_texts;
    std::span<const uchar> m_suffixes;
    size_t m_previousAt = 0; // in the output
    size_t m_previousBytes = 0;
};

bool plainFromPrefixes(const Column &column, std::span<const uchar> in, qint32 maxValues,
                       std::vector<uchar> &out)
{
    DeltaDecoder prefixDelta(in);
    std::vector<qint64> prefixes;
    if (!prefixDelta.readAll(prefixes, maxValues)) {
        return false;
    }
    DeltaDecoder suffixDelta(prefixDelta.rest());
    std::vector<qint64> suffixes;
    if (!suffixDelta.readAll(suffixes, maxValues) || suffixes.size() != prefixes.size()) {
        return false;
    }
    PrefixedTexts texts(column, suffixDelta.rest(), out);
    bool isGood = true;
    for (size_t i = 0; isGood && i < prefixes.size(); ++i) {
        isGood = texts.add(prefixes[i], suffixes[i]);
    }
    return isGood;
}

bool plainFromStreams(std::span<const uchar> in, size_t width, qint32 maxValues,
                      std::vector<uchar> &out)
{
    // The number of values follows from the size; nulls are not stored.
    const size_t count = in.size() / width;
    if (count > static_cast<size_t>(maxValues)) {
        return false;
    }
    out.resize(count * width);
    for (size_t byte = 0; byte < width; ++byte) {
        for (size_t i = 0; i < count; ++i) {
            out[i * width + byte] = in[byte * count + i];
        }
    }
    return true;
}

} // namespace

/// Whether an encoding is allowed for a physical type (parquet-format, Encodings.md).
bool hasPlainForm(qint32 encoding, qint32 physical)
{
    switch (encoding) {
    case kDeltaBinaryPacked:
        return physical == kInt32 || physical == kInt64;
    case kDeltaLengthByteArray:
        return physical == kByteArray;
    case kDeltaByteArray:
        return physical == kByteArray || physical == kFixedLenByteArray;
    case kByteStreamSplit:
        return physical != kBoolean && physical != kByteArray && physical != kInt96;
    default:
        return false;
    }
}

Result<void, Error> toPlain(qint32 encoding, const Column &column, std::span<const uchar> in,
                            qint32 maxValues, std::vector<uchar> &out)
{
    if (maxValues < 0 || maxValues > kMaxValues) {
        return Fault{Error::BadData};
    }
    bool isGood = false;
    switch (encoding) {
    case kDeltaBinaryPacked:
        isGood = plainNumbers(in, column.valueBytes, maxValues, out);
        break;
    case kDeltaLengthByteArray:
        isGood = plainFromLengths(column, in, maxValues, out);
        break;
    case kDeltaByteArray:
        isGood = plainFromPrefixes(column, in, maxValues, out);
        break;
    default:
        isGood = plainFromStreams(in, static_cast<size_t>(column.valueBytes), maxValues, out);
    }
    out.resize(out.size() + kPageTailBytes, 0);
    return isGood ? Result<void, Error>() : Fault{Error::BadData};
}

QString encodingName(qint32 encoding)
{
    constexpr std::array kNames{"PLAIN"_L1,
                                "1"_L1,
                                "PLAIN_DICTIONARY"_L1,
                                "RLE"_L1,
                                "BIT_PACKED"_L1,
                                "DELTA_BINARY_PACKED"_L1,
                                "DELTA_LENGTH_BYTE_ARRAY"_L1,
                                "DELTA_BYTE_ARRAY"_L1,
                                "RLE_DICTIONARY"_L1,
                                "BYTE_STREAM_SPLIT"_L1};
    return encoding >= 0 && encoding < static_cast<qint32>(kNames.size())
               ? QString(kNames[static_cast<size_t>(encoding)])
               : QString::number(encoding);
}

} // namespace corvanta::parquet
