// The value of the 56-bit fraction F and the exponent X is F / 2^56 * 16^X. A double is M *
// 2^(E-52) with 2^52 <= M < 2^53, so X = floor(E / 4) + 1 and F = M * 2^(E mod 4).
#include "codecs/sas/ibm_float.h"

#include "base/bytes.h"

#include <bit>

namespace corvanta::sas {

namespace {

constexpr int kDoubleFractionBits = 52;
constexpr quint64 kDoubleFraction = (quint64(1) << kDoubleFractionBits) - 1;
constexpr int kDoubleBias = 1023;
constexpr int kIbmBias = 64;
constexpr int kIbmMaxExponent = 127;
constexpr int kIbmFractionBits = 56;
constexpr char kMissing = '.';

} // namespace

Stored putIbmFloat(double value, int width, char *out)
{
    const auto bits = std::bit_cast<quint64>(value);
    const quint64 sign = bits >> 63 << 63;
    const int exponent = static_cast<int>(bits >> kDoubleFractionBits & 0x7FF) - kDoubleBias;
    const int power = (exponent >> 2) + 1 + kIbmBias; // >> rounds down
    if (power > kIbmMaxExponent) {
        putIbmMissing(out);
        return Stored::TooLarge;
    }
    if (power < 0) { // subnormal doubles are below the range, too
        storeBE(quint64(0), out);
        return value == 0 ? Stored::Exact : Stored::Rounded;
    }
    const quint64 mantissa = (bits & kDoubleFraction) | (kDoubleFraction + 1);
    const quint64 fraction = mantissa << (exponent & 3);
    storeBE(sign | static_cast<quint64>(power) << kIbmFractionBits | fraction, out);
    const quint64 cutOff = fraction & ((quint64(1) << 8 * (8 - width)) - 1);
    return cutOff == 0 ? Stored::Exact : Stored::Rounded;
}

void putIbmMissing(char *out)
{
    storeBE(static_cast<quint64>(kMissing) << kIbmFractionBits, out);
}

} // namespace corvanta::sas
