// Text of number cells: the digits that a number column shows where text is expected.
//
// Independent of the locale. Threads: pure functions.
#pragma once
#include "base/cell.h"
#include "base/number.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace corvanta::cell {

/// Whether a Key cell can hold the number; the two highest keys mean missing.
inline bool isKey(double value)
{
    return value >= 0 && value < kMissingKeyOther && value == std::floor(value);
}

/// Print a Key or Double cell as UTF-16 to `out`, which has room for kNumberChars units. Returns
/// the number of units; 0 for a missing cell. Writes no final NUL.
///
/// A key is an unsigned decimal; a double has the fewest digits that read back as the same value
/// (see putShortest()). `cell` may be unaligned. Not for Text cells.
inline int putNumberText(Type type, const uchar *cell, char16_t *out)
{
    std::array<char, kNumberChars> text{};
    int n = 0;
    if (type == Type::Key) {
        const auto key = loadNative<quint32>(cell);
        n = isMissingKey(key) ? 0 : putUInt(key, text.data());
    } else {
        const auto value = loadNative<double>(cell);
        n = isMissingDouble(value) ? 0 : putShortest(value, text.data());
    }
    std::copy_n(text.data(), n, out);
    return n;
}

} // namespace corvanta::cell
