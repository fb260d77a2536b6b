#include "base/cell.h"

namespace corvanta::cell {

namespace {
// One byte in front keeps the (absent) units of a one-byte length code aligned.
alignas(8) constexpr uchar kTexts[] = {0, 0x80, 0, 0x81};
alignas(8) constexpr uchar kOnes[] = {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};
} // namespace

const uchar *missingTextCell()
{
    return kTexts + 1;
}
const uchar *emptyTextCell()
{
    return kTexts + 3;
}
const uchar *missingKeyCell()
{
    return kOnes;
}
const uchar *missingDoubleCell()
{
    return kOnes;
}

} // namespace corvanta::cell
