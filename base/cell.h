// base/cell.h
// The bytes of a cell, the one place that knows them.
//
//   K  32-bit unsigned, machine order; 0xFFFFFFFE and 0xFFFFFFFF are missing
//   F  IEEE double, machine order; all bits one is missing
//   U  length code, then UTF-16 units, machine order
//
// Length code: 1 to 4 bytes of 7 bits, least significant group first, the last byte marked by its
// high bit (a fourth byte is last in any case). Code 0 is a missing text, 1 an empty text, L >= 2 a
// text of L - 1 units. Cells may lie at any address; RowBuffer places text cells so that their
// units are 2-byte aligned.
#pragma once
#include "base/bytes.h"
#include "base/limits.h"

#include <QtGlobal>

#include <bit>
#include <string_view>

namespace corvanta::cell {

/// What a cell holds; the letters are those of column types.
enum class Type : char { Key = 'K', Double = 'F', Text = 'U' };

inline constexpr quint32 kMissingKey = 0xFFFFFFFFU;
inline constexpr quint32 kMissingKeyOther = 0xFFFFFFFEU;
inline constexpr quint64 kMissingDoubleBits = ~quint64(0);

inline constexpr int kKeyBytes = 4;
inline constexpr int kDoubleBytes = 8;

inline bool isMissingKey(quint32 key)
{
    return key >= kMissingKeyOther;
}
inline bool isMissingDouble(double value)
{
    return std::bit_cast<quint64>(value) == kMissingDoubleBits;
}
inline double missingDouble()
{
    return std::bit_cast<double>(kMissingDoubleBits);
}

/// Bytes that the length code takes when a cell is built: 127 itself takes two.
inline int lengthBytes(quint32 code)
{
    constexpr quint32 kGroup = 128;
    if (code < 127) {
        return 1;
    }
    if (code < 127 * kGroup) {
        return 2;
    }
    return code < 127 * kGroup * kGroup ? 3 : 4;
}

/// The length code of a text of `units` UTF-16 units (0 units: an empty text, not a missing one).
inline quint32 codeOfText(qsizetype units)
{
    return static_cast<quint32>(units) + 1;
}

/// Bytes of a text cell of `units` UTF-16 units.
inline qsizetype textCellBytes(qsizetype units)
{
    return lengthBytes(codeOfText(units)) + units * 2;
}

/// Write a length code of `bytes` bytes (from lengthBytes()); returns the place behind it.
inline uchar *putLength(uchar *out, quint32 code, int bytes)
{
    for (int i = 1; i < bytes; ++i) {
        *out++ = static_cast<uchar>(code & 0x7F);
        code >>= 7;
    }
    *out++ = static_cast<uchar>(code | 0x80);
    return out;
}

/// A text cell taken apart. `units` points into the cell and may be unaligned for a cell that did
/// not come from a RowBuffer.
struct Text
{
    quint32 code = 0; ///< 0: missing
    const uchar *units = nullptr;
    bool isMissing() const { return code == 0; }
    qsizetype size() const { return code == 0 ? 0 : static_cast<qsizetype>(code) - 1; }
    /// The units, for cells known to be aligned (all cells of rows on a pin are).
    const char16_t *data() const { return reinterpret_cast<const char16_t *>(units); }
    std::u16string_view view() const { return {data(), static_cast<size_t>(size())}; }
};

inline Text readText(const uchar *cell)
{
    quint32 code = 0;
    for (int shift = 0;; shift += 7) {
        const uchar byte = *cell++;
        if (byte >= 0x80 || shift == 21) {
            code |= static_cast<quint32>(byte & 0x7F) << shift;
            return {code, cell};
        }
        code |= static_cast<quint32>(byte) << shift;
    }
}

/// Bytes of the text cell at `cell`, length code included.
inline qsizetype textCellBytes(const uchar *cell)
{
    const Text text = readText(cell);
    return (text.units - cell) + text.size() * 2;
}

/// Bytes of the cell at `cell`.
inline qsizetype bytesOf(Type type, const uchar *cell)
{
    switch (type) {
    case Type::Key:
        return kKeyBytes;
    case Type::Double:
        return kDoubleBytes;
    case Type::Text:
        break;
    }
    return textCellBytes(cell);
}

/// The shared cells for values that are not there; static storage, valid for ever.
const uchar *missingTextCell();
const uchar *emptyTextCell();
const uchar *missingKeyCell();
const uchar *missingDoubleCell();

} // namespace corvanta::cell
