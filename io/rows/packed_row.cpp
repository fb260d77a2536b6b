// A packed row is its cells one after the other, without padding:
//
//   K     4 bytes
//   F     8 bytes
//   U     1..5 bytes: (length code of the cell << 1) + width, 7 bits per byte, the low ones first;
//         the high bit is set in all but the last byte. Width 0: a byte per unit, the units are
//         below 256. Width 1: two bytes per unit.
#include "io/rows/packed_row.h"

namespace corvanta::rows {

namespace {

constexpr int kTextHeaderBytes = 5;

/// Seven bits per byte, the lowest first; the high bit says that another byte follows.
char *putHeader(quint32 value, char *out)
{
    for (; value >= 0x80; value >>= 7) {
        *out++ = static_cast<char>(value | 0x80);
    }
    *out++ = static_cast<char>(value);
    return out;
}

const char *readHeader(const char *in, quint32 *value)
{
    *value = 0;
    for (int shift = 0;; shift += 7) {
        const auto byte = static_cast<uchar>(*in++);
        *value |= static_cast<quint32>(byte & 0x7F) << shift;
        if (byte < 0x80) {
            return in;
        }
    }
}

/// Without an early end, so that the loop uses vectors.
bool isNarrow(const char16_t *units, qsizetype n)
{
    char16_t all = 0;
    for (qsizetype i = 0; i < n; ++i) {
        all |= units[i];
    }
    return all < 0x100;
}

char *packText(const uchar *cell, char *out)
{
    const cell::Text text = cell::readText(cell);
    const qsizetype n = text.size();
    const char16_t *const units = text.data();
    const bool isWide = !isNarrow(units, n);
    out = putHeader(text.code << 1 | (isWide ? 1 : 0), out);
    if (isWide) {
        std::memcpy(out, units, static_cast<size_t>(n) * 2);
        return out + n * 2;
    }
    for (qsizetype i = 0; i < n; ++i) {
        out[i] = static_cast<char>(units[i]);
    }
    return out + n;
}

const char *unpackText(const char *packed, RowBuffer *buffer, const uchar **out)
{
    quint32 header = 0;
    packed = readHeader(packed, &header);
    const quint32 code = header >> 1;
    if (code == 0) {
        *out = cell::missingTextCell();
        return packed;
    }
    const qsizetype n = static_cast<qsizetype>(code) - 1;
    const int lengthBytes = cell::lengthBytes(code);
    uchar *const bytes = buffer->alloc(static_cast<int>(lengthBytes + n * 2));
    auto *const units = reinterpret_cast<char16_t *>(cell::putLength(bytes, code, lengthBytes));
    *out = bytes;
    if ((header & 1) != 0) {
        std::memcpy(units, packed, static_cast<size_t>(n) * 2);
        return packed + n * 2;
    }
    for (qsizetype i = 0; i < n; ++i) {
        units[i] = static_cast<uchar>(packed[i]);
    }
    return packed + n;
}

} // namespace

/// Too much for most texts, but the room is given back: a pass over the units would cost more.
qsizetype packedBytesAtMost(const ColumnTypes &types, const uchar *const *cells)
{
    qsizetype bytes = 0;
    for (size_t i = 0; i < types.size(); ++i) {
        bytes += types[i] == cell::Type::Text
                     ? kTextHeaderBytes + cell::readText(cells[i]).size() * 2
                     : cell::kDoubleBytes;
    }
    return bytes;
}

char *packRow(const ColumnTypes &types, const uchar *const *cells, char *out)
{
    for (size_t i = 0; i < types.size(); ++i) {
        if (types[i] == cell::Type::Text) {
            out = packText(cells[i], out);
            continue;
        }
        const qsizetype n = cell::bytesOf(types[i], cells[i]);
        std::memcpy(out, cells[i], static_cast<size_t>(n));
        out += n;
    }
    return out;
}

const char *unpackRow(const ColumnTypes &types, const char *packed, RowBuffer *buffer,
                      const uchar **cells)
{
    for (size_t i = 0; i < types.size(); ++i) {
        if (types[i] == cell::Type::Text) {
            packed = unpackText(packed, buffer, &cells[i]);
            continue;
        }
        cells[i] = reinterpret_cast<const uchar *>(packed);
        packed += types[i] == cell::Type::Key ? cell::kKeyBytes : cell::kDoubleBytes;
    }
    return packed;
}

} // namespace corvanta::rows
