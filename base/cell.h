// Encodes and decodes the bytes of a cell. No other file knows this layout.
//
//   type  bytes  content
//   K         4  unsigned number, machine order; 0xFFFFFFFE and 0xFFFFFFFF mean missing
//   F         8  IEEE double, machine order; all bits set means missing
//   U       1..  length code of 1 to 4 bytes, then UTF-16 units in machine order
//
// A length code has 7 bits per byte, least significant group first. The last byte has its high bit
// set; a fourth byte is the last in any case. Code 0 is a missing text, code 1 an empty text, and
// code L >= 2 a text of L - 1 units.
//
// A cell may be at any address. RowBuffer places text cells so that their units are 2-byte aligned.
// Threads: pure functions; the shared cells are constant.
#pragma once
#include "base/bytes.h"
#include "base/limits.h"

#include <QtGlobal>

#include <bit>
#include <string_view>

namespace corvanta::cell {

/// The type of a cell. The values are the letters that name column types.
enum class Type : char { Key = 'K', Double = 'F', Text = 'U' };

/// The two keys that mean missing. Readers write the first one. Both are therefore not available as
/// values: a column that may hold them needs doubles.
inline constexpr quint32 kMissingKey = 0xFFFFFFFFU;
inline constexpr quint32 kMissingKeyOther = 0xFFFFFFFEU;
/// The bits of a missing double: a NaN that arithmetic on other values never gives.
inline constexpr quint64 kMissingDoubleBits = ~quint64(0);

/// Sizes in bytes of the cells of fixed width.
inline constexpr int kKeyBytes = 4;
inline constexpr int kDoubleBytes = 8;

/// Whether the key is one of the two missing ones.
inline bool isMissingKey(quint32 key)
{
    return key >= kMissingKeyOther;
}
/// Compares bits: every other NaN is a value.
inline bool isMissingDouble(double value)
{
    return std::bit_cast<quint64>(value) == kMissingDoubleBits;
}
/// The missing double. Copy it only with loadNative() and storeNative(), or as a double: a
/// conversion to float and back changes its bits.
inline double missingDouble()
{
    return std::bit_cast<double>(kMissingDoubleBits);
}

/// Number of bytes of a length code when a cell is built (1 to 4). Code 127 already takes two.
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

/// The length code of a text of `units` UTF-16 units. 0 units make an empty text, not a missing
/// one.
inline quint32 codeOfText(qsizetype units)
{
    return static_cast<quint32>(units) + 1;
}

/// Size in bytes of a text cell of `units` UTF-16 units, including its length code.
inline qsizetype textCellBytes(qsizetype units)
{
    return lengthBytes(codeOfText(units)) + units * 2;
}

/// Write a length code of `bytes` bytes, as lengthBytes() returned. Returns the address after it,
/// where the units begin.
inline uchar *putLength(uchar *out, quint32 code, int bytes)
{
    for (int i = 1; i < bytes; ++i) {
        *out++ = static_cast<uchar>(code & 0x7F);
        code >>= 7;
    }
    *out++ = static_cast<uchar>(code | 0x80);
    return out;
}

/// The parts of a text cell. `units` points into the cell, and may be unaligned if the cell did not
/// come from a RowBuffer.
struct Text
{
    quint32 code = 0; ///< Length code; 0 means missing.
    const uchar *units = nullptr;
    /// Whether there is no text, as opposed to an empty one.
    bool isMissing() const { return code == 0; }
    /// Number of UTF-16 units; 0 for a missing text and for an empty one.
    qsizetype size() const { return code == 0 ? 0 : static_cast<qsizetype>(code) - 1; }
    /// The units of an aligned cell. All cells of rows on a pin are aligned.
    const char16_t *data() const { return reinterpret_cast<const char16_t *>(units); }
    /// data() and size(). Valid as long as the cell.
    std::u16string_view view() const { return {data(), static_cast<size_t>(size())}; }
};

/// Split the text cell at `cell` into its parts. Reads only the length code. The parts are valid as
/// long as the cell. Does not check lengths: cells come from this program and not from a file.
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

/// Size in bytes of the text cell at `cell`, including its length code.
inline qsizetype textCellBytes(const uchar *cell)
{
    const Text text = readText(cell);
    return (text.units - cell) + text.size() * 2;
}

/// Size in bytes of the cell at `cell`, for copying it. Depends on the content only for Text.
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

/// Shared cells for missing values, in static storage: valid until the program ends, and
/// never written to.
const uchar *missingTextCell();
const uchar *missingKeyCell();
const uchar *missingDoubleCell();

} // namespace corvanta::cell
