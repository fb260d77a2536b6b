// IBM hexadecimal floating-point numbers, which transport files store.
//
//   byte 0      sign (bit 7), exponent of 16 plus 64
//   bytes 1-7   fraction: 14 hexadecimal digits after the point, the first one not 0
//
// Format: SAS technical note TS-140, "Numeric Data Fields". A narrow number is the first 3 to 7 of
// these bytes. A fraction has 53 to 56 significant bits, so that 8 bytes hold every double of the
// range exactly. Pure functions; any thread may call them.
#pragma once
#include <QtGlobal>

namespace corvanta::sas {

/// What became of a value.
enum class Stored : quint8 {
    Exact,
    Rounded,  ///< Digits that do not fit the width are dropped; also values near 0, which become 0.
    TooLarge, ///< Infinite, or 16^63 and above: stored as missing.
};

/// Store `value`, which is not NaN, in the first `width` bytes (3 to 8) at `out`, which has room
/// for 8 bytes.
Stored putIbmFloat(double value, int width, char *out);

/// Store the missing value ".", of any width, in 8 bytes at `out`.
void putIbmMissing(char *out);

} // namespace corvanta::sas
